#include "corvantile/formats/calibration.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/core.h>

#include "corvantile/formats/text_lines.hpp"
#include "corvantile/utils/failure.hpp"

namespace corvantile {
namespace {

constexpr std::array<std::string_view, 4> column_names{"RGB_I", "RGB_R", "RGB_G", "RGB_B"};

}  // namespace

calibration_curves read_calibration(std::string_view name, std::string_view text) {
  const std::vector<cgats_table> tables = parse_cgats(name, text);
  const auto table = std::ranges::find(tables, std::string_view("CAL"), &cgats_table::identifier);
  if (table == tables.end())
    refuse_line(name, 1, expected_found("a calibration that begins with CAL", tables[0].identifier));
  return calibration_from(name, *table);
}

calibration_curves calibration_from(std::string_view name, const cgats_table& table) {
  std::array<std::size_t, 4> columns{};
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const auto at = find_field(table, column_names[i]);
    if (!at) {
      refuse_line(
          name, table.line,
          fmt::format("the calibration has no column {}; expected RGB_I, RGB_R, RGB_G and RGB_B", column_names[i]));
    }
    columns[i] = *at;
  }
  calibration_curves curves;
  cgats_rows rows(name, table, columns);
  while (rows.next()) {
    const auto values = rows.values();
    for (const double v : values) {
      if (!(v >= 0 && v <= 1))
        refuse_line(name, rows.line(), expected_found("calibration values from 0 to 1", fmt::format("{}", v)));
    }
    if (!curves[0].x.empty() && !(values[0] > curves[0].x.back())) {
      refuse_line(
          name, rows.line(),
          fmt::format("the calibration's inputs must rise, but {} follows {}", values[0], curves[0].x.back()));
    }
    for (std::size_t c = 0; c < 3; ++c) {
      curves[c].x.push_back(values[0]);
      curves[c].y.push_back(values[c + 1]);
    }
  }
  if (curves[0].x.size() < 2) {
    refuse_line(name, table.line,
                fmt::format("the calibration has {} rows, expected at least 2", curves[0].x.size()));
  }
  return curves;
}

bool is_identity(const calibration_curves& curves) {
  constexpr double rounding = 1e-4;
  return std::ranges::all_of(curves, [](const lut& curve) {
    return std::ranges::equal(curve.x, curve.y, [](double x, double y) { return std::abs(x - y) <= rounding; });
  });
}

}  // namespace corvantile
