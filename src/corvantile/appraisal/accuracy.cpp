#include "corvantile/appraisal/accuracy.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

#include "corvantile/readings/ramps.hpp"

namespace corvantile {
namespace {

bool same(const vec3& a, const vec3& b) {
  for (std::size_t c = 0; c < 3; ++c) {
    if (!(std::abs(a[c] - b[c]) <= same_drive)) return false;
  }
  return true;
}

// The rows behind the four ramps that are fitted, less those at a drive of the first `measured_ramps` of these.
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

}  // namespace

accuracy_figures accuracy_of(const monitor& mon, const measurements& samples) {
  std::vector<prediction> unseen = predict_rows(mon, unseen_rows(mon, has_derived_ramps(samples) ? 1 : 4));
  std::erase_if(unseen, [](const prediction& p) { return !std::isfinite(p.difference); });
  std::vector<std::size_t> gray(static_cast<std::size_t>(mon.nramp));
  for (std::size_t i = 0; i < gray.size(); ++i) gray[i] = i;

  const prediction_figures f = summarize(unseen);
  accuracy_figures a{f.all, f.near_gray, summarize(predict_rows(mon, gray)).all, {}};
  std::ranges::sort(unseen, std::ranges::greater{}, &prediction::difference);
  a.patches = std::move(unseen);
  return a;
}

}  // namespace corvantile
