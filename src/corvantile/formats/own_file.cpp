#include "corvantile/formats/own_file.hpp"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "corvantile/documents/measurement_file.hpp"
#include "corvantile/formats/raw_readings.hpp"
#include "corvantile/formats/text_lines.hpp"
#include "corvantile/readings/ramps.hpp"
#include "corvantile/utils/failure.hpp"

namespace corvantile {
namespace {

bool is_full_primary(const vec3& drive, std::size_t channel) {
  vec3 full;
  full[channel] = 1;
  const vec3 off = drive - full;
  return std::ranges::all_of(off.v, [](double v) { return std::abs(v) <= same_drive; });
}

// Removes derived ramps, which are not readings. All readings follow them, except full primaries that the derived
// ramps meet: these are kept.
void keep_readings(std::vector<reading>& rows, std::size_t levels) {
  const auto ramps_end = rows.begin() + static_cast<std::ptrdiff_t>(4 * levels);
  std::vector<reading> kept(rows.begin(), rows.begin() + static_cast<std::ptrdiff_t>(levels));
  for (std::size_t c = 0; c < 3; ++c) {
    const bool read =
        std::any_of(ramps_end, rows.end(), [&](const reading& r) { return is_full_primary(r.drive, c); });
    if (!read) kept.push_back(rows[(c + 1) * levels]);
  }
  kept.insert(kept.end(), ramps_end, rows.end());
  rows = std::move(kept);
}

}  // namespace

readings read_own_file(std::string_view name, std::string_view text) {
  const auto [samples, known] = parse_measurement_file(std::string(name), text);
  readings found;
  found.source = name;
  found.kind = "Corvantile measurements";
  found.instrument = known.instrument;
  found.originator = known.originator;
  found.date = known.date;
  found.display = known.display;
  found.absolute = known.absolute.value_or(false);
  found.calibration = known.calibration;
  for (const std::string& told : known.notes) found.notes.add({told});
  std::vector<raw_reading> rows(samples.data.rows());
  double full_drive = 0;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    rows[i].line = samples.lines[i];
    for (std::size_t c = 0; c < 3; ++c) {
      rows[i].drive[c] = samples.data(i, c);
      rows[i].xyz[c] = samples.data(i, 3 + c);
      full_drive = std::max(full_drive, samples.data(i, c));
    }
  }
  if (!(full_drive > 0)) refuse_content(name, "no drive value is above 0, so full drive is unknown");
  append_rows(found, rows, {0, full_drive});
  const bool derived = known.ramps.starts_with("derived") && has_derived_ramps(samples);
  if (derived && found.rows.size() == rows.size()) keep_readings(found.rows, static_cast<std::size_t>(samples.nramp));
  if (!known.absolute) found.notes.add({"X, Y, Z stay relative: no comment tells their unit."});
  return found;
}

}  // namespace corvantile
