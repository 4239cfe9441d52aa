#pragma once
// Simulated displays that do not add up, as charts of ramps and mixtures and as what is learnt from these.

#include <algorithm>
#include <vector>

#include "corvantile/residual/residual_model.hpp"
#include "tests/monitor/fitted.hpp"

namespace corvantile {

/// Channels that take light from each other, above uneven tone curves.
inline simulated_display crosstalk_display(double crosstalk) {
  simulated_display d = uneven_display();
  d.crosstalk = {{crosstalk, crosstalk, crosstalk}};
  return d;
}

/// `n` places spread evenly over the cube without order: the R3 sequence (Roberts, 2018).
inline std::vector<vec3> scattered(std::size_t n) {
  std::vector<vec3> places(n);
  for (std::size_t i = 0; i < n; ++i) {
    const double k = static_cast<double>(i) + 0.5;
    for (std::size_t c = 0; c < 3; ++c) {
      const double x = k * std::array{0.8191725133961645, 0.6710436067037893, 0.5497004779019703}[c];
      places[i][c] = x - std::floor(x);
    }
  }
  return places;
}

/// n^3 places on an even grid, the last coordinate running fastest.
inline std::vector<vec3> even_places(std::size_t n) {
  std::vector<vec3> places;
  const std::vector<double> at = linspace(0, 1, n);
  for (const double a : at)
    for (const double b : at)
      for (const double c : at) places.push_back({{a, b, c}});
  return places;
}

/// The ramps, then `mixtures` places over the cube, every third drawn near to the gray axis.
inline std::vector<reading> chart_of(const simulated_display& d, std::size_t mixtures) {
  std::vector<reading> all;
  const matrix ramps = sample_rows(d);
  for (std::size_t i = 0; i < ramps.rows(); ++i) {
    all.push_back({row3(ramps, i) / d.drive, {{ramps(i, 3), ramps(i, 4), ramps(i, 5)}}, i + 1});
  }
  for (vec3 u : scattered(mixtures)) {
    const double mean = (u[0] + u[1] + u[2]) / 3;
    if (all.size() % 3 == 0) u = vec3{{mean, mean, mean}} + 0.2 * (u - vec3{{mean, mean, mean}});
    all.push_back({u, shown(d, u), all.size() + 1});
  }
  return all;
}

inline residual_model learnt(const simulated_display& d, std::size_t mixtures = 175) {
  return learn_residual(fitted(d), chart_of(d, mixtures));
}

}  // namespace corvantile
