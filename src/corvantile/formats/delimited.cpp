#include "corvantile/formats/delimited.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/core.h>
#include <optional>
#include <string>
#include <vector>

#include "corvantile/formats/delimited_cells.hpp"
#include "corvantile/formats/delimited_header.hpp"
#include "corvantile/formats/raw_readings.hpp"
#include "corvantile/formats/text_lines.hpp"
#include "corvantile/utils/failure.hpp"

namespace corvantile {
namespace {

constexpr std::size_t longest_line = 1000000;
constexpr std::string_view expected_table =
    "a header that names R, G, B and X, Y, Z (or x, y, Y), or rows of 6 or 12 numbers";

bool is_comment(std::string_view line) {
  if (line.starts_with('#') || line.starts_with("//")) return true;
  return line.starts_with(';') && (line.size() == 1 || line[1] == ' ' || line.find(';', 1) == std::string_view::npos);
}

// The lines that are not comments, cell by cell.
class table_reader {
 public:
  table_reader(std::string_view name, std::string_view text) : name_(name), lines_(text) {}

  bool next() {
    while (const auto text = lines_.next()) {
      const std::string_view row = without_margins(*text);
      if (row.empty()) continue;
      if (is_comment(row)) {
        comment_ = row;
        continue;
      }
      if (row.size() > longest_line) refuse("a line of more than a million characters");
      if (take_separator(row)) continue;
      if (separator_ == '\0') separator_ = separator_of(row);
      split_cells(*text, separator_, cells);
      if (cells.size() > most_cells) refuse(fmt::format("more than {} cells in one line", most_cells));
      if (!cells.empty()) return true;
    }
    return false;
  }

  // Some programs write the names into the last comment before the first row.
  std::vector<std::string_view> names_in_comment() const {
    std::vector<std::string_view> names;
    if (comment_.size() > 1) split_cells(comment_.substr(1), separator_of(comment_.substr(1)), names);
    return names;
  }

  double number(std::size_t column, std::string_view what) const {
    const std::string_view cell = column < cells.size() ? cells[column] : std::string_view{};
    const auto v = cell_number(cell);
    if (!v) refuse(expected_found(fmt::format("a number as {}", what), cell));
    return *v;
  }

  [[noreturn]] void refuse(std::string_view what) const { refuse_line(name_, lines_.number(), what); }
  std::size_t line() const { return lines_.number(); }

  std::vector<std::string_view> cells;

 private:
  // Spreadsheets begin with "sep=;" to name their separator.
  bool take_separator(std::string_view row) {
    if (row.size() != 5 || !same_word(row.substr(0, 4), "sep=")) return false;
    separator_ = row[4];
    return true;
  }

  std::string_view name_;
  line_reader lines_;
  std::string_view comment_;
  char separator_ = '\0';
};

bool all_numbers(const std::vector<std::string_view>& cells) {
  return std::ranges::all_of(cells, [](std::string_view cell) { return cell_number(cell).has_value(); });
}

// ---- One reading a row ----

raw_reading reading_in_row(const table_reader& table, const table_columns& columns) {
  static constexpr std::array drive_names{"R", "G", "B"};
  static constexpr std::array xyz_names{"X", "Y", "Z"};
  static constexpr std::array xyy_names{"x", "y", "Y"};
  if (table.cells.size() > columns.width) {
    table.refuse(
        fmt::format("expected {} cells, found {}; if commas separate the cells, write numbers with a decimal "
                    "point or in quotes",
                    columns.width, table.cells.size()));
  }
  raw_reading row;
  row.line = table.line();
  bool measured = false;
  for (const std::size_t c : columns.light)
    measured = measured || (c < table.cells.size() && !table.cells[c].empty());
  vec3 light{{NAN, NAN, NAN}};
  for (std::size_t i = 0; i < 3; ++i) {
    row.drive[i] = table.number(columns.drive[i], drive_names[i]);
    if (measured) light[i] = table.number(columns.light[i], (columns.chromaticity ? xyy_names : xyz_names)[i]);
  }
  row.xyz = columns.chromaticity && measured ? xyz_of_xyY(light[0], light[1], light[2]) : light;
  return row;
}

void read_rows(readings& into, table_reader& table, const table_columns& columns) {
  std::vector<raw_reading> rows;
  do rows.push_back(reading_in_row(table, columns));
  while (table.next());
  into.absolute = columns.absolute;
  append_rows(into, rows, columns.percent ? drive_scale{0, 100} : guess_drive_scale(into, rows));
  if (!columns.absolute) into.notes.add({"X, Y, Z stay relative: the header does not tell their unit."});
}

// ---- Four ramps side by side ----

struct ramp_row {
  std::array<vec3, 4> xyz;
  std::size_t line = 0;
};

double total(const ramp_row& row) { return row.xyz[0][1] + row.xyz[1][1] + row.xyz[2][1] + row.xyz[3][1]; }

// The ramps' letters by their colours at full drive: white is the brightest; of the others, red has the largest share
// of X, green of Y and blue of Z. If one ramp wins twice, the result is not a layout.
std::string layout_by_colour(const std::array<vec3, 4>& full) {
  std::size_t white = 0;
  for (std::size_t i = 1; i < 4; ++i)
    if (full[i][1] > full[white][1]) white = i;
  std::string layout(4, 'w');
  for (std::size_t k = 0; k < 3; ++k) {
    const auto share = [&](std::size_t i) { return full[i][k] / (full[i][0] + full[i][1] + full[i][2]); };
    std::size_t most = white == 0 ? 1 : 0;
    for (std::size_t i = 0; i < 4; ++i)
      if (i != white && share(i) > share(most)) most = i;
    layout[most] = "rgb"[k];
  }
  return layout;
}

vec3 drive_of(char letter, double level) {
  if (letter == 'w') return {{level, level, level}};
  vec3 drive;
  drive[std::string_view("rgb").find(letter)] = level;
  return drive;
}

std::vector<ramp_row> ramp_rows(table_reader& table) {
  std::vector<ramp_row> rows;
  do {
    if (table.cells.size() != 12) {
      table.refuse(fmt::format("expected 12 numbers, as in the first row, found {}", table.cells.size()));
    }
    ramp_row row{{}, table.line()};
    for (std::size_t i = 0; i < 12; ++i) row.xyz[i / 3][i % 3] = table.number(i, "X, Y or Z");
    rows.push_back(row);
  } while (table.next());
  if (rows.size() < 2) table.refuse("only one row; expected one for each level, from dark to full drive");
  return rows;
}

void read_four_ramps(readings& into, table_reader& table, std::string layout) {
  const std::vector<ramp_row> ramps = ramp_rows(table);
  const std::size_t last = ramps.size() - 1;
  const bool rising = total(ramps[last]) > total(ramps[0]);
  const bool guessed = layout.empty();
  if (guessed) layout = layout_by_colour((rising ? ramps[last] : ramps[0]).xyz);
  if (!is_layout(layout)) {
    refuse_content(into.source,
                   "the colours of the four ramps do not tell which is which; give their order as a layout such as "
                   "rgbw");
  }
  std::vector<raw_reading> rows;
  for (std::size_t i = 0; i <= last; ++i) {
    const double level = static_cast<double>(rising ? i : last - i) / static_cast<double>(last);
    for (std::size_t ramp = 0; ramp < 4; ++ramp)
      rows.push_back({drive_of(layout[ramp], level), ramps[i].xyz[ramp], ramps[i].line});
  }
  into.notes.add(
      {fmt::format("The 12 columns are taken as X, Y, Z of four ramps in the order {}{}, at {} even levels, {} "
                   "first.",
                   layout, guessed ? " (told by their colours)" : "", ramps.size(), rising ? "dark" : "full drive")});
  append_rows(into, rows, {0, 1});
  into.notes.add({"X, Y, Z stay relative: the file does not tell their unit."});
}

}  // namespace

bool is_layout(std::string_view layout) {
  std::string letters(layout);
  std::ranges::sort(letters);
  return letters == "bgrw";
}

readings read_delimited(std::string_view name, std::string_view text, std::string_view layout) {
  readings found;
  found.source = name;
  found.kind = "CSV";
  table_reader table(name, text);
  if (!table.next()) refuse_content(name, fmt::format("no rows; expected {}", expected_table));

  std::string problem;
  if (!all_numbers(table.cells)) {
    const auto columns = read_table_header(table.cells, problem);
    if (!columns) table.refuse(fmt::format("{}: {}", problem, expected_found(expected_table, table.cells[0])));
    if (!table.next()) table.refuse("no rows after the header");
    read_rows(found, table, *columns);
    return found;
  }
  const std::vector<std::string_view> names = table.names_in_comment();
  if (const auto columns = read_table_header(names, problem); columns && columns->width == table.cells.size()) {
    read_rows(found, table, *columns);
  } else if (table.cells.size() == 6) {
    found.notes.add({"Without a header the six columns are taken as R, G, B, X, Y, Z."});
    read_rows(found, table, {{0, 1, 2}, {3, 4, 5}, 6});
  } else if (table.cells.size() == 12) {
    read_four_ramps(found, table, std::string(layout));
  } else {
    table.refuse(
        fmt::format("a row of {} numbers: {}", table.cells.size(), expected_found(expected_table, table.cells[0])));
  }
  return found;
}

}  // namespace corvantile
