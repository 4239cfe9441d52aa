#include "corvantile/formats/hcfr.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/core.h>
#include <vector>

#include "corvantile/formats/delimited_cells.hpp"
#include "corvantile/formats/raw_readings.hpp"
#include "corvantile/formats/text_lines.hpp"
#include "corvantile/utils/failure.hpp"

namespace corvantile {
namespace {

struct sheet_row {
  std::vector<std::string_view> cells;
  std::size_t line = 0;
};

// The rows that have any cell.
std::vector<sheet_row> rows_of(const source& from) {
  constexpr std::size_t most_rows = 20000;  // a save appends nine
  std::vector<sheet_row> rows;
  line_reader lines(from.text);
  char separator = '\0';
  while (const auto line = lines.next()) {
    if (separator == '\0') separator = separator_of(*line);
    sheet_row row{{}, lines.number()};
    split_cells(*line, separator, row.cells);
    if (row.cells.empty()) continue;
    rows.push_back(std::move(row));
    if (rows.size() > most_rows) refuse_line(from.name, lines.number(), "too many rows for a sheet of HCFR");
  }
  return rows;
}

bool names_delta_e(std::string_view cell) { return same_word(cell.substr(0, 5), "delta"); }

// Whether `x_row` begins three rows labelled X, Y, Z.
bool is_series(const std::vector<sheet_row>& rows, std::size_t x_row) {
  static constexpr std::array labels{"X", "Y", "Z"};
  for (std::size_t k = 0; k < 3; ++k) {
    if (x_row + k >= rows.size() || rows[x_row + k].cells[0] != labels[k]) return false;
  }
  return true;
}

double number_in(const source& from, const sheet_row& row, std::size_t column) {
  const std::string_view cell = column < row.cells.size() ? row.cells[column] : std::string_view{};
  const auto v = cell_number(cell);
  if (!v) refuse_line(from.name, row.line, expected_found(fmt::format("a number in cell {}", column + 1), cell));
  return *v;
}

// Row of the last series of X, Y, Z: each save appends one.
std::size_t last_series(readings& into, const source& from, const std::vector<sheet_row>& rows) {
  std::size_t found = 0;
  std::size_t count = 0;
  for (std::size_t i = 1; i < rows.size(); ++i) {
    if (rows[i].cells[0] != "X") continue;
    if (!is_series(rows, i)) {
      refuse_line(from.name, rows[i].line,
                  "expected the rows X, Y and Z of a series; the sheet was cut short, save it again");
    }
    found = i;
    ++count;
  }
  if (count == 0)
    refuse_line(from.name, rows.empty() ? 1 : rows.back().line, "the sheet ends without the rows X, Y and Z");
  if (count > 1) {
    into.notes.add({fmt::format("the last of {} series is taken.", count), rows[found].line});
  }
  return found;
}

vec3 xyz_in_column(const source& from, const std::vector<sheet_row>& rows, std::size_t x_row, std::size_t column) {
  vec3 xyz;
  for (std::size_t k = 0; k < 3; ++k) xyz[k] = number_in(from, rows[x_row + k], column);
  return xyz;
}

// The row above X has a label in the user's language, then the levels in percent.
std::vector<raw_reading> gray_scale(readings& into, const source& from) {
  const std::vector<sheet_row> rows = rows_of(from);
  const std::size_t x = last_series(into, from, rows);
  const sheet_row& levels = rows[x - 1];
  std::vector<raw_reading> found;
  for (std::size_t i = 1; i < levels.cells.size(); ++i) {
    const double level = number_in(from, levels, i);
    found.push_back({{{level, level, level}}, xyz_in_column(from, rows, x, i), rows[x].line});
  }
  return found;
}

std::vector<raw_reading> primaries(readings& into, const source& from) {
  constexpr std::array<vec3, 6> columns{vec3{{100, 0, 0}},   vec3{{0, 100, 0}},   vec3{{0, 0, 100}},
                                        vec3{{100, 100, 0}}, vec3{{0, 100, 100}}, vec3{{100, 0, 100}}};
  const std::vector<sheet_row> rows = rows_of(from);
  const std::size_t x = last_series(into, from, rows);
  const std::size_t count = std::clamp<std::size_t>(rows[x].cells.size(), 4, columns.size() + 1);
  std::vector<raw_reading> found;
  for (std::size_t i = 1; i < count; ++i)
    found.push_back({columns[i - 1], xyz_in_column(from, rows, x, i), rows[x].line});
  return found;
}

std::vector<raw_reading> color_checker(readings& into, const source& from) {
  std::vector<raw_reading> found;
  std::size_t nameless = 0;
  for (const sheet_row& row : rows_of(from)) {
    const auto drive = drive_of_hcfr_name(row.cells[0]);
    if (drive) {
      found.push_back(
          {100.0 * *drive, {{number_in(from, row, 1), number_in(from, row, 2), number_in(from, row, 3)}}, row.line});
    } else if (row.line > 1) {
      ++nameless;
    }
  }
  if (found.empty()) {
    refuse_line(from.name, 1,
                "no patch has a name that states its drive, such as 'W 50.228'; measure the chart that "
                "corvantile-kit writes for HCFR");
  }
  if (nameless > 0) {
    into.notes.add({fmt::format("{} of {} patches are skipped: their names do not state a drive.", nameless,
                                nameless + found.size())});
  }
  return found;
}

void append_sheet(readings& into, const source& from, hcfr_sheet sheet) {
  readings part;
  part.source = from.name;
  part.notes = std::move(into.notes);
  part.notes.begin_file(ascii(from.name));
  const std::vector<raw_reading> rows = sheet == hcfr_sheet::gray_scale  ? gray_scale(part, from)
                                        : sheet == hcfr_sheet::primaries ? primaries(part, from)
                                                                         : color_checker(part, from);
  append_rows(part, rows, {0, 100});
  into.rows.insert(into.rows.end(), part.rows.begin(), part.rows.end());
  into.notes = std::move(part.notes);
  into.source += (into.source.empty() ? "" : " + ") + from.name;
}

// Three decimals of a percentage tell the video codes 16 to 235 apart, but are not exact.
double exact_drive(double in_percent) {
  constexpr double codes = 219;
  constexpr double rounding = 0.0006;
  const double nearest = std::round(in_percent / 100 * codes);
  return std::abs(nearest * 100 / codes - in_percent) <= rounding ? nearest / codes : in_percent / 100;
}

}  // namespace

std::optional<hcfr_sheet> hcfr_sheet_of(std::string_view text) {
  const auto line = line_reader(text).next();
  if (!line) return std::nullopt;
  std::vector<std::string_view> cells;
  split_cells(*line, separator_of(*line), cells);
  if (cells.size() >= 2 && cells[0] == "Measure")
    return cell_number(cells[1]) ? hcfr_sheet::gray_scale : hcfr_sheet::primaries;
  constexpr std::array<std::string_view, 7> checker{"Color", "X", "Y", "Z", "R", "G", "B"};
  if (cells.size() >= 8 && std::equal(checker.begin(), checker.end(), cells.begin()) && names_delta_e(cells[7]))
    return hcfr_sheet::color_checker;
  return std::nullopt;
}

readings read_hcfr(const source& first, const std::optional<source>& second) {
  std::array<bool, 3> given{};
  readings found;
  found.kind = "HCFR";
  found.originator = "HCFR";
  found.absolute = true;
  for (const source* sheet : {&first, second ? &*second : nullptr}) {
    if (!sheet) continue;
    const auto which = hcfr_sheet_of(sheet->text);
    if (!which) {
      refuse_line(sheet->name, 1,
                  expected_found("the first line of HCFR's GrayScaleSheet, PrimariesSheet or ColorCheckerSheet",
                                 line_reader(sheet->text).next().value_or("")));
    }
    bool& once = given[static_cast<std::size_t>(*which)];
    if (once)
      refuse_content(sheet->name,
                     "the same kind of sheet is given twice; expected a GrayScaleSheet and a PrimariesSheet");
    once = true;
    append_sheet(found, *sheet, *which);
  }
  if (!given[2] && !given[0])
    refuse_content(first.name, "the primaries alone; give HCFR's GrayScaleSheet of the same display as well");
  if (!given[2] && !given[1])
    refuse_content(first.name, "a gray ramp alone; give HCFR's PrimariesSheet of the same display as well");
  return found;
}

std::string hcfr_patch_name(const vec3& drive) {
  const vec3 percent = 100.0 * drive;
  if (drive[0] == drive[1] && drive[1] == drive[2]) return fmt::format("W {:.3f}", percent[0]);
  for (std::size_t c = 0; c < 3; ++c)
    if (drive[(c + 1) % 3] == 0 && drive[(c + 2) % 3] == 0) return fmt::format("{} {:.3f}", "RGB"[c], percent[c]);
  return fmt::format("RGB {:.3f} {:.3f} {:.3f}", percent[0], percent[1], percent[2]);
}

std::optional<vec3> drive_of_hcfr_name(std::string_view name) {
  blank_cells words(name);
  const std::string_view channels = words.next().value_or("");
  vec3 stated;
  std::size_t count = 0;
  for (auto word = words.next(); word; word = words.next(), ++count) {
    const auto v = cell_number(*word);
    if (!v || !(*v >= 0 && *v <= 100) || count == 3) return std::nullopt;
    stated[count] = exact_drive(*v);
  }
  if (channels == "RGB" && count == 3) return stated;
  if (channels.size() != 1 || count != 1) return std::nullopt;
  if (channels == "W") return vec3{{stated[0], stated[0], stated[0]}};
  const std::size_t c = std::string_view("RGB").find(channels);
  if (c == std::string_view::npos) return std::nullopt;
  vec3 drive;
  drive[c] = stated[0];
  return drive;
}

}  // namespace corvantile
