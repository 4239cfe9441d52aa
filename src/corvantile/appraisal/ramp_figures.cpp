#include "corvantile/appraisal/ramp_figures.hpp"

#include <algorithm>
#include <cmath>
#include <vector>

#include "corvantile/appraisal/gamut.hpp"
#include "corvantile/colour/chromaticity.hpp"
#include "corvantile/colour/color_metrics.hpp"

namespace corvantile {
namespace {

double lightness(double y) { return 116 * cuberoot(y) - 16; }

// Drives and lightness of one ramp, zero drive first.
struct lightness_ramp {
  std::vector<double> drive, L;
};

lightness_ramp lightness_of(const monitor& mon, std::size_t ramp) {
  const auto n = static_cast<std::size_t>(mon.nramp);
  lightness_ramp r;
  for (std::size_t i = n; i-- > 0;) {
    const std::size_t row = ramp * n + i;
    r.drive.push_back(mon.rgb(row, ramp == 0 ? 0 : ramp - 1));
    r.L.push_back(lightness(mon.xyz(row, 1) / mon.xyz(ramp * n, 1)));
  }
  return r;
}

// The distance of level i from the cubic through its four neighbours, divided by the factor by which this magnifies
// equal noise of all five.
double residual(const lightness_ramp& r, std::size_t i) {
  const std::array<std::size_t, 4> near{i - 2, i - 1, i + 1, i + 2};
  double off = r.L[i], magnified = 1;
  for (const std::size_t j : near) {
    double weight = 1;  // of Lagrange's formula
    for (const std::size_t k : near) {
      if (k != j) weight *= (r.drive[i] - r.drive[k]) / (r.drive[j] - r.drive[k]);
    }
    off -= weight * r.L[j];
    magnified += weight * weight;
  }
  return off / std::sqrt(magnified);
}

}  // namespace

noise_figures noise_of(const monitor& mon, std::size_t ramps) {
  std::array<double, 3> squares{};
  std::array<std::size_t, 3> counts{};
  for (std::size_t ramp = 0; ramp < ramps; ++ramp) {
    const lightness_ramp r = lightness_of(mon, ramp);
    for (std::size_t i = 2; i + 2 < r.L.size(); ++i) {
      const double off = residual(r, i);
      if (!std::isfinite(off)) continue;  // repeated drives
      const std::size_t band = r.drive[i] < 0.25 ? 0 : r.drive[i] > 0.75 ? 2 : 1;
      squares[band] += off * off;
      ++counts[band];
    }
  }
  const auto rms = [&](std::size_t b) {
    return counts[b] > 0 ? std::sqrt(squares[b] / static_cast<double>(counts[b])) : 0;
  };
  return {rms(0), rms(1), rms(2)};
}

std::array<double, 4> wandering_of(const monitor& mon) {
  const auto n = static_cast<std::size_t>(mon.nramp);
  std::array<double, 4> farthest{};
  for (std::size_t ramp = 0; ramp < 4; ++ramp) {
    const vec3 top = row3(mon.xyz, ramp * n) - mon.darklight;
    for (std::size_t i = 1; i < n; ++i) {
      const vec3 light = row3(mon.xyz, ramp * n + i) - mon.darklight;
      if (light[1] < 0.05 * top[1]) continue;
      farthest[ramp] = std::max(farthest[ramp], uv1976_distance(chromaticity(light), chromaticity(top)));
    }
  }
  return farthest;
}

}  // namespace corvantile
