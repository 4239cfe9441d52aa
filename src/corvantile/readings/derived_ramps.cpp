#include "corvantile/readings/derived_ramps.hpp"

#include <algorithm>

#include "corvantile/numerics/linsolv.hpp"

namespace corvantile {
namespace {

// Indices of a longest rising subsequence of the values of `v` above 0 that ends with the last one: dropping the rest
// drops the fewest. The last value is the top of a ramp and always stays.
// By patience sorting; `tails[k]` ends the subsequence of length k + 1 with the lowest end.
std::vector<std::size_t> longest_rising(std::span<const double> v) {
  std::vector<std::size_t> tails, before(v.size());
  const std::size_t top = v.size() - 1;
  for (std::size_t i = 0; i < top; ++i) {
    if (!(v[i] > 0 && v[i] < v[top])) continue;
    const auto at = std::ranges::lower_bound(tails, v[i], {}, [&](std::size_t k) { return v[k]; });
    before[i] = at == tails.begin() ? i : *(at - 1);
    if (at == tails.end()) {
      tails.push_back(i);
    } else {
      *at = i;
    }
  }
  std::vector<std::size_t> kept{top};
  for (std::size_t i = tails.empty() ? 0 : tails.back(); kept.size() <= tails.size(); i = before[i])
    kept.push_back(i);
  std::ranges::reverse(kept);
  return kept;
}

// Replaces the values that break the rise of `m`: each divides the way between its sound neighbours as `light` does.
// Below the first value, the neighbour is 0 at light 0. Returns how many were replaced.
std::size_t repair(std::span<double> m, std::span<const double> light) {
  const std::vector<std::size_t> sound = longest_rising(m);
  std::size_t next = 0;  // index into sound, which ends with the last of m
  double m_below = 0, light_below = 0;
  for (std::size_t i = 0; i < m.size(); ++i) {
    if (sound[next] == i) {
      m_below = m[i];
      light_below = light[i];
      ++next;
    } else {
      const double step = light[sound[next]] - light_below;
      const double f = step > 0 ? std::clamp((light[i] - light_below) / step, 0.0, 1.0) : 0.0;
      m[i] = std::max(m_below + f * (m[sound[next]] - m_below), i > 0 ? m[i - 1] : 0.0);
    }
  }
  return m.size() - sound.size();
}

}  // namespace

derived_ramps derive_ramps(std::span<const vec3> gray, const vec3& dark, const mat3& primaries) {
  derived_ramps r{matrix(gray.size(), 3)};
  const mat3 shares = inv(primaries);
  std::vector<double> light(gray.size());
  for (std::size_t i = 0; i < gray.size(); ++i) {
    set_row3(r.share, i, shares * (gray[i] - dark));
    light[i] = gray[i][1] - dark[1];
  }
  for (std::size_t c = 0; c < 3; ++c) r.repaired += repair(r.share.col(c), light);
  return r;
}

}  // namespace corvantile
