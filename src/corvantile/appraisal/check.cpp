#include "corvantile/appraisal/check.hpp"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <numeric>
#include <utility>

#include "corvantile/colour/chromaticity.hpp"
#include "corvantile/job/judgements.hpp"
#include "corvantile/readings/ramps.hpp"

namespace corvantile {
namespace {

bool same(const vec3& a, const vec3& b) {
  const vec3 off = a - b;
  return std::ranges::all_of(off.v, [](double v) { return std::abs(v) <= same_drive; });
}

// The rows of the samples at `drive`, which consists of 0 and 1.
std::vector<std::size_t> rows_at(const monitor& mon, const vec3& drive) {
  std::vector<std::size_t> rows;
  for (std::size_t i = 0; i < mon.rgb.rows(); ++i) {
    if (same(row3(mon.rgb, i), drive) && std::isfinite(mon.xyz(i, 1))) rows.push_back(i);
  }
  return rows;
}

double spread_of(const monitor& mon, const std::vector<std::size_t>& rows) {
  const auto y = [&](std::size_t row) { return mon.xyz(row, 1); };
  const auto [low, high] = std::ranges::minmax_element(rows, {}, y);
  return (y(*high) - y(*low)) / mon.whitepoint[1];
}

// Channel c at full drive, less the dark. The top of a derived ramp was not measured; its reading is after the ramps.
vec3 primary_of(const monitor& mon, std::size_t c, bool derived) {
  vec3 drive;
  drive[c] = 1;
  const auto rows = rows_at(mon, drive);
  const std::size_t top = (c + 1) * static_cast<std::size_t>(mon.nramp);
  return row3(mon.xyz, derived && !rows.empty() ? rows.back() : top) - mon.darklight;
}

// The spread of all readings at zero drive, and of the last rows of the ramps: these count as dark at any drive.
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

// ---- Accuracy ----

// The rows after the four ramps, except those at a drive of the first `measured_ramps` ramps.
std::vector<std::size_t> unseen_rows(const monitor& mon, std::size_t measured_ramps) {
  const auto n = static_cast<std::size_t>(mon.nramp);
  std::vector<std::size_t> rows;
  for (std::size_t i = 4 * n; i < mon.rgb.rows(); ++i) {
    const vec3 drive = row3(mon.rgb, i), xyz = row3(mon.xyz, i);
    if (!std::ranges::all_of(xyz.v, [](double v) { return std::isfinite(v); })) continue;
    bool seen = false;
    for (std::size_t k = 0; k < measured_ramps * n && !seen; ++k) seen = same(drive, row3(mon.rgb, k));
    if (!seen) rows.push_back(i);
  }
  return rows;
}

std::vector<prediction> predict_rows(const monitor& mon, const std::vector<std::size_t>& rows) {
  matrix samples(rows.size(), 6);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    for (std::size_t c = 0; c < 3; ++c) {
      samples(i, c) = mon.rgb(rows[i], c);
      samples(i, 3 + c) = mon.xyz(rows[i], c);
    }
  }
  return predict(mon, samples, mon.whitepoint);
}

accuracy_figures accuracy_of(const monitor& mon, bool derived) {
  std::vector<prediction> unseen = predict_rows(mon, unseen_rows(mon, derived ? 1 : 4));
  std::erase_if(unseen, [](const prediction& p) { return !std::isfinite(p.difference); });
  std::vector<std::size_t> gray(static_cast<std::size_t>(mon.nramp));
  std::iota(gray.begin(), gray.end(), 0);

  const prediction_figures f = summarize(unseen);
  std::ranges::sort(unseen, std::ranges::greater{}, &prediction::difference);
  return {f.all, f.near_gray, summarize(predict_rows(mon, gray)).all, std::move(unseen)};
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

  q.accuracy = accuracy_of(mon, q.derived_ramps);
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
