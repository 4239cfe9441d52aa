#include "corvantile/formats/own_file.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "corvantile/formats/raw_readings.hpp"
#include "corvantile/formats/text_lines.hpp"
#include "corvantile/monitor/measurements.hpp"
#include "corvantile/readings/provenance.hpp"
#include "corvantile/readings/ramps.hpp"
#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/number_scanner.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {
namespace {

// The scanner stands before the header.
number_scanner behind_comments(std::string_view text) {
  number_scanner numbers(text);
  for (number_scanner ahead = numbers;; numbers = ahead) {
    const auto line = ahead.next_line();
    if (!line || !line->starts_with(';')) return numbers;
  }
}

bool is_full(const vec3& drive, std::size_t channel) {
  vec3 full;
  full[channel] = 1;
  const vec3 off = drive - full;
  return std::ranges::all_of(off.v, [](double v) { return std::abs(v) <= same_drive; });
}

// Takes derived ramps out: they are no readings. What was read stands behind them, but for full primaries that the
// derived ramps meet.
void keep_readings(std::vector<reading>& rows, std::size_t levels) {
  const auto ramps_end = rows.begin() + static_cast<std::ptrdiff_t>(4 * levels);
  std::vector<reading> kept(rows.begin(), rows.begin() + static_cast<std::ptrdiff_t>(levels));
  for (std::size_t c = 0; c < 3; ++c) {
    const bool read = std::any_of(ramps_end, rows.end(), [&](const reading& r) { return is_full(r.drive, c); });
    if (!read) kept.push_back(rows[(c + 1) * levels]);
  }
  kept.insert(kept.end(), ramps_end, rows.end());
  rows = std::move(kept);
}

}  // namespace

bool is_own_file(std::string_view text) {
  number_scanner numbers = behind_comments(text);
  const auto header = numbers.next_line();
  if (!header) return false;
  number_scanner counts(*header);
  std::int64_t levels = 0;
  std::int64_t extra = 0;
  std::int64_t version = 0;
  for (std::int64_t* count : {&levels, &extra, &version})
    if (counts.next(*count) != number_scanner::result::number) return false;
  double more = 0;
  return (version == 1 || version == 2) && counts.next(more) == number_scanner::result::end;
}

readings read_own_file(std::string_view name, std::string_view text) {
  const measurements samples = parse_measurements(std::string(name), text);
  const provenance known = parse_provenance(text);
  readings found;
  found.source = name;
  found.kind = "Corvantile measurements";
  found.instrument = known.instrument;
  found.originator = known.originator;
  found.date = known.date;
  found.display = known.display;
  found.absolute = known.absolute.value_or(false);
  found.calibration = known.calibration;
  found.notes = known.notes;
  number_scanner numbers = behind_comments(text);
  numbers.next_line();  // the header

  std::vector<raw_reading> rows(samples.data.rows());
  double full_drive = 0;
  for (raw_reading& row : rows) {
    for (std::size_t c = 0; c < 6; ++c) {
      double v = 0;
      numbers.next(v);
      if (c == 0) row.line = numbers.line();
      (c < 3 ? row.drive[c] : row.xyz[c - 3]) = v;
      if (c < 3) full_drive = std::max(full_drive, v);
    }
  }
  if (!(full_drive > 0)) refuse_content(name, "no drive value is above 0, so that full drive is unknown");
  append_rows(found, rows, {0, full_drive});
  const bool derived = known.ramps.starts_with("derived") && has_derived_ramps(samples);
  if (derived && found.rows.size() == rows.size()) keep_readings(found.rows, static_cast<std::size_t>(samples.nramp));
  if (!known.absolute) found.notes.emplace_back("X, Y, Z stay relative: no comment tells their unit.");
  return found;
}

}  // namespace corvantile
