#include "corvantile/formats/cgats.hpp"

#include <algorithm>
#include <array>
#include <fmt/core.h>
#include <optional>
#include <string>
#include <vector>

#include "corvantile/formats/calibration.hpp"
#include "corvantile/formats/cgats_table.hpp"
#include "corvantile/formats/raw_readings.hpp"
#include "corvantile/formats/text_lines.hpp"
#include "corvantile/utils/failure.hpp"

namespace corvantile {
namespace {

constexpr std::string_view calibration_identifier = "CAL";

struct colour_columns {
  std::array<std::size_t, 6> position;  // R, G, B, then X, Y, Z or x, y, Y
  bool chromaticity;
};

std::optional<std::array<std::size_t, 3>> find_three(const cgats_table& table,
                                                     const std::array<std::string_view, 3>& names) {
  std::array<std::size_t, 3> found{};
  for (std::size_t i = 0; i < 3; ++i) {
    const auto at = find_field(table, names[i]);
    if (!at) return std::nullopt;
    found[i] = *at;
  }
  return found;
}

[[noreturn]] void refuse_without_xyz(std::string_view name, const cgats_table& table) {
  const bool spectral = std::ranges::any_of(
      table.fields, [](std::string_view f) { return f.starts_with("SPEC") || f.starts_with("nm"); });
  if (find_field(table, "LAB_L")) {
    refuse_line(
        name, table.line,
        "the readings are CIELAB (COLOR_REP \"RGB_LAB\"), which does not tell the display's white; measure or "
        "export again with X, Y, Z (columns XYZ_X, XYZ_Y, XYZ_Z)");
  }
  refuse_line(name, table.line,
              fmt::format("there are no columns XYZ_X, XYZ_Y, XYZ_Z; {}",
                          spectral ? "these are spectra only: let ArgyllCMS's spec2cie compute X, Y, Z from them"
                                   : "export the readings with X, Y, Z"));
}

colour_columns find_columns(std::string_view name, const cgats_table& table) {
  const auto rgb = find_three(table, {"RGB_R", "RGB_G", "RGB_B"});
  if (!rgb) {
    refuse_line(name, table.line,
                "there are no columns RGB_R, RGB_G, RGB_B; expected readings of a display driven by R, G and B");
  }
  const auto xyz = find_three(table, {"XYZ_X", "XYZ_Y", "XYZ_Z"});
  const auto xyy = find_three(table, {"XYY_X", "XYY_Y", "XYY_CAPY"});
  if (!xyz && !xyy) refuse_without_xyz(name, table);
  const auto& light = xyz ? *xyz : *xyy;
  return {{(*rgb)[0], (*rgb)[1], (*rgb)[2], light[0], light[1], light[2]}, !xyz};
}

void require_display(std::string_view name, const cgats_table& table) {
  if (table.identifier == "CTI1" || table.identifier == "CTI2") {
    refuse_line(name, table.line,
                fmt::format("{}, a chart that is still to be measured; give the .ti3 that dispread makes of it",
                            expected_found("readings", table.identifier)));
  }
  const cgats_keyword* device = find_keyword(table, "DEVICE_CLASS");
  if (device && !same_word(device->value, "DISPLAY")) {
    refuse_line(name, device->line, expected_found("DEVICE_CLASS \"DISPLAY\"", device->value));
  }
}

// The factor that turns X, Y, Z into cd/m2; nothing if the file does not tell.
std::optional<double> to_absolute(readings& into, const cgats_table& table) {
  if (same_word(keyword_value(table, "NORMALIZED_TO_Y_100"), "NO")) return 1.0;
  if (const cgats_keyword* white = find_keyword(table, "LUMINANCE_XYZ_CDM2")) {
    blank_cells cells(white->value);
    cells.next();
    const auto luminance = cell_number(cells.next().value_or(""));
    if (luminance && *luminance > 0 && *luminance < 1e6) {
      into.notes.add(
          {fmt::format("X, Y, Z are converted to cd/m2: the white has {} cd/m2.", *luminance), white->line});
      return *luminance / 100;
    }
    into.notes.add(
        {fmt::format("X, Y, Z stay relative: {}.", expected_found("a luminance in LUMINANCE_XYZ_CDM2", white->value)),
         white->line});
    return std::nullopt;
  }
  into.notes.add({"X, Y, Z stay relative: the file does not tell the white's luminance."});
  return std::nullopt;
}

// DisplayCAL writes the display's name into the options for colprof: -M "DELL U2718Q".
std::string display_in_remarks(const cgats_table& table) {
  constexpr std::string_view option = "-M \"";
  for (const std::string_view remark : table.remarks) {
    const std::size_t at = remark.find(option);
    if (at == std::string_view::npos) continue;
    const std::string_view behind = remark.substr(at + option.size());
    return ascii(behind.substr(0, std::min<std::size_t>(behind.find('"'), 80)));
  }
  return {};
}

void describe(readings& into, const cgats_table& table) {
  const auto text_of = [&](std::string_view key) { return ascii(keyword_value(table, key).substr(0, 200)); };
  into.kind = table.identifier == "CTI3" ? "Argyll .ti3" : "CGATS";
  into.instrument = text_of("TARGET_INSTRUMENT");
  if (into.instrument.empty()) into.instrument = text_of("INSTRUMENTATION");
  into.originator = text_of("ORIGINATOR");
  into.date = text_of("CREATED");
  into.display = display_in_remarks(table);
}

void note_counts(readings& into, const cgats_table& table, std::size_t rows) {
  const cgats_keyword* sets = find_keyword(table, "NUMBER_OF_SETS");
  const auto promised = sets ? cell_number(sets->value) : std::nullopt;
  if (promised && *promised != static_cast<double>(rows)) {
    into.notes.add({fmt::format("NUMBER_OF_SETS promises {} rows; there are {}.", *promised, rows), sets->line});
  }
}

void read_rows(readings& into, const cgats_table& table) {
  const colour_columns columns = find_columns(into.source, table);
  const auto factor = to_absolute(into, table);
  into.absolute = factor.has_value();
  std::vector<raw_reading> rows;
  cgats_rows cells(into.source, table, columns.position);
  while (cells.next()) {
    const auto v = cells.values();
    const vec3 light = columns.chromaticity ? xyz_of_xyY(v[3], v[4], v[5]) : vec3{{v[3], v[4], v[5]}};
    rows.push_back({{{v[0], v[1], v[2]}}, light, cells.line()});
  }
  note_counts(into, table, rows.size());
  const drive_scale usual = table.identifier == "CTI3" ? drive_scale{0, 100} : drive_scale{0, 0};
  append_rows(into, rows, guess_drive_scale(into, rows, usual));
  for (reading& r : into.rows) r.xyz = factor.value_or(1.0) * r.xyz;
}

void read_calibration_of(readings& into, const cgats_table& table) {
  calibration_curves curves = calibration_from(into.source, table);
  if (is_identity(curves)) {
    into.notes.add({"the calibration in effect while measuring changes nothing and is ignored.", table.line});
    return;
  }
  into.notes.add(
      {fmt::format("the display was measured through a calibration of {} entries.", curves[0].x.size()), table.line});
  into.calibration = std::move(curves);
}

}  // namespace

readings read_cgats(std::string_view name, std::string_view text) {
  const std::vector<cgats_table> tables = parse_cgats(name, text);
  const auto is_calibration = [](const cgats_table& t) { return t.identifier == calibration_identifier; };
  const auto measured = std::ranges::find_if_not(tables, is_calibration);
  if (measured == tables.end()) {
    refuse_line(name, 1, "a calibration (CAL) holds no readings; give the .ti3 that was measured with it");
  }
  require_display(name, *measured);

  readings found;
  found.source = name;
  describe(found, *measured);
  read_rows(found, *measured);
  for (const cgats_table& table : tables) {
    if (&table == &*measured) continue;
    if (is_calibration(table) && !found.calibration) {
      read_calibration_of(found, table);
    } else {
      found.notes.add({"this table is skipped: only the first one with readings is read.", table.line});
    }
  }
  return found;
}

}  // namespace corvantile
