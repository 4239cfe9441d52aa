#include "corvantile/formats/delimited_header.hpp"

#include <algorithm>
#include <fmt/core.h>
#include <initializer_list>
#include <vector>

#include "corvantile/formats/text_lines.hpp"

namespace corvantile {
namespace {

struct column_name {
  std::string_view name;
  std::string_view unit;
  std::size_t position = 0;
};

std::string_view without_prefix(std::string_view name) {
  for (const std::string_view prefix : {"CIE 1931 ", "CIE ", "CIE_", "RGB_", "XYZ_", "xyY_"})
    if (name.size() > prefix.size() && same_word(name.substr(0, prefix.size()), prefix))
      return name.substr(prefix.size());
  return name;
}

// A cell with only a unit belongs to the name before it: a blank has separated them.
std::vector<column_name> taken_apart(std::span<const std::string_view> cells) {
  std::vector<column_name> columns;
  for (const std::string_view cell : cells) {
    const std::size_t bracket = std::min(cell.find_first_of("(["), cell.size());
    const std::string_view inside = cell.substr(std::min(bracket + 1, cell.size()));
    const std::string_view unit = without_margins(inside.substr(0, inside.find_first_of(")]")));
    if (bracket == 0 && !cell.empty() && !columns.empty()) {
      columns.back().unit = unit;
    } else {
      columns.push_back({without_prefix(without_margins(cell.substr(0, bracket))), unit, columns.size()});
    }
  }
  return columns;
}

class name_search {
 public:
  name_search(std::span<const column_name> columns, std::string& problem) : columns_(columns), problem_(problem) {}

  // The column with one of these names. The letters' case counts if `exact`.
  const column_name* find(std::initializer_list<std::string_view> names, bool exact) {
    const column_name* found = nullptr;
    for (const column_name& column : columns_) {
      const bool fits = std::ranges::any_of(
          names, [&](std::string_view n) { return exact ? n == column.name : same_word(n, column.name); });
      if (!fits) continue;
      if (found && problem_.empty()) problem_ = fmt::format("the column {} appears twice", ascii(column.name));
      found = &column;
    }
    return found;
  }

 private:
  std::span<const column_name> columns_;
  std::string& problem_;
};

using three_columns = std::array<const column_name*, 3>;
bool complete(const three_columns& columns) { return std::ranges::find(columns, nullptr) == columns.end(); }

// X, Y, Z in upper case; else x, y with a luminance; else, if there is no other Y, X, Y, Z in any case.
three_columns find_light(name_search& search, bool& chromaticity) {
  chromaticity = false;
  const three_columns upper{search.find({"X"}, true), search.find({"Y"}, true), search.find({"Z"}, true)};
  if (complete(upper)) return upper;
  const column_name* luminance = upper[1];
  if (!luminance) luminance = search.find({"Lv", "Luminance", "L"}, false);
  const three_columns with_luminance{search.find({"x"}, true), search.find({"y"}, true), luminance};
  if (complete(with_luminance)) {
    chromaticity = true;
    return with_luminance;
  }
  return {search.find({"x"}, false), search.find({"y"}, false), search.find({"z"}, false)};
}

bool is_candela(std::string_view unit) {
  return same_word(unit.substr(0, 4), "cd/m") || same_word(unit.substr(0, 3), "nit");
}

}  // namespace

std::optional<table_columns> read_table_header(std::span<const std::string_view> names, std::string& problem) {
  const std::vector<column_name> columns = taken_apart(names);
  problem.clear();
  name_search search(columns, problem);
  const three_columns drive{search.find({"R", "Red"}, false), search.find({"G", "Green"}, false),
                            search.find({"B", "Blue"}, false)};
  table_columns found;
  const three_columns light = find_light(search, found.chromaticity);
  if (problem.empty() && !complete(drive)) problem = "no columns named R, G, B";
  if (problem.empty() && !complete(light)) problem = "no columns named X, Y, Z, or x, y, Y";
  if (!problem.empty()) return std::nullopt;
  for (std::size_t i = 0; i < 3; ++i) {
    found.drive[i] = drive[i]->position;
    found.light[i] = light[i]->position;
  }
  found.width = columns.size();
  found.absolute = is_candela(light[found.chromaticity ? 2 : 1]->unit);
  found.percent = drive[0]->unit == "%";
  return found;
}

}  // namespace corvantile
