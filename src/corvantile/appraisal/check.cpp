#include "corvantile/appraisal/check.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

#include "corvantile/colour/chromaticity.hpp"
#include "corvantile/job/judgements.hpp"
#include "corvantile/readings/ramps.hpp"

namespace corvantile {
namespace {

// Rows of the samples with one drive: `drive` has 0 and 1 only.
std::vector<std::size_t> rows_at(const monitor& mon, const vec3& drive) {
  std::vector<std::size_t> rows;
  for (std::size_t i = 0; i < mon.rgb.rows(); ++i) {
    const vec3 off = row3(mon.rgb, i) - drive;
    const bool same = std::ranges::all_of(off.v, [](double v) { return std::abs(v) <= same_drive; });
    if (same && std::isfinite(mon.xyz(i, 1))) rows.push_back(i);
  }
  return rows;
}

double spread_of(const monitor& mon, const std::vector<std::size_t>& rows) {
  const auto y = [&](std::size_t row) { return mon.xyz(row, 1); };
  const auto [low, high] = std::ranges::minmax_element(rows, {}, y);
  return (y(*high) - y(*low)) / mon.whitepoint[1];
}

// Channel c at full drive, less the dark. The top of a derived ramp is not measured; what was stands behind the
// ramps.
vec3 primary_of(const monitor& mon, std::size_t c, bool derived) {
  vec3 drive;
  drive[c] = 1;
  const auto rows = rows_at(mon, drive);
  const std::size_t top = (c + 1) * static_cast<std::size_t>(mon.nramp);
  return row3(mon.xyz, derived && !rows.empty() ? rows.back() : top) - mon.darklight;
}

// Of whatever was read at zero drive, and of the ramps' last rows, which count as the dark whatever their drive is.
double dark_spread_of(const monitor& mon, std::size_t ramps, const provenance& known) {
  auto rows = rows_at(mon, {});
  for (std::size_t r = 1; r <= ramps; ++r) rows.push_back(r * static_cast<std::size_t>(mon.nramp) - 1);
  const double spread = spread_of(mon, rows);
  return known.repeated.dark ? std::max(spread, known.repeated.dark->spread) : spread;
}

std::optional<double> repeat_spread_of(const monitor& mon, const provenance& known) {
  if (known.repeated.ramps) return known.repeated.ramps->spread;
  const auto whites = rows_at(mon, {{1, 1, 1}});
  if (whites.size() < 2) return std::nullopt;
  return spread_of(mon, whites);
}

}  // namespace

quality check_measurements(const measurements& samples, const provenance& known) {
  const monitor mon = makemonitor(samples, 5);
  quality q;
  q.known = known;
  q.derived_ramps = has_derived_ramps(samples);
  q.dark = mon.darklight;
  q.white = mon.whitepoint;
  double sum = 0;
  std::array<vec2, 3> native;
  for (std::size_t c = 0; c < 3; ++c) {
    q.primaries[c] = primary_of(mon, c, q.derived_ramps);
    native[c] = chromaticity(q.primaries[c]);
    sum += q.primaries[c][1];
  }
  q.additivity = sum / (q.white[1] - q.dark[1]) - 1;
  q.dark_spread = dark_spread_of(mon, ramp_count(samples.version), known);
  q.repeat_spread = repeat_spread_of(mon, known);

  q.accuracy = accuracy_of(mon, samples);
  q.noise = noise_of(mon, q.derived_ramps ? 1 : 4);
  q.wandering = wandering_of(mon);
  q.contrast = q.dark[1] > 0 ? q.white[1] / q.dark[1] : std::numeric_limits<double>::infinity();
  q.white_xy = chromaticity(q.white);
  q.white_cct = xyz2cct(q.white_xy);
  q.white_from_d65 = uv1976_distance(q.white_xy, d65);
  q.gamut = compare_gamut({.red = native[0], .green = native[1], .blue = native[2], .white = q.white_xy});
  q.numsegs = largest_numsegs(mon);
  q.warnings = judge(samples, mon);
  q.findings = findings_of(q);
  return q;
}

}  // namespace corvantile
