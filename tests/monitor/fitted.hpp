#pragma once
// Simulated displays taken through the fit: what the tests of everything above the numerics work on.

#include "monitor/monitor.hpp"
#include "tools/simulated_display.hpp"

namespace corvantile {

inline measurements measured(const simulated_display& d) { return {"simulated", readings(d), d.levels, d.version}; }

/// The model of `d`, in 5 pieces unless told otherwise.
inline monitor fitted(const simulated_display& d, std::optional<int> numsegs = {}, double minslope = 0.0) {
  return makemonitor(measured(d), numsegs, minslope);
}

/// A display that is nowhere ideal: unequal channels, bent X and Z, a toe, a black level.
inline simulated_display uneven_display() {
  simulated_display d;
  d.gamma = {{2.1, 2.2, 2.4}};
  d.nX = {{0.05, -0.03, 0.04}};
  d.nZ = {{0.02, 0.06, -0.02}};
  d.toe = 0.02;
  return d;
}

/// A front end that bends, mixes and stays invertible.
inline front_end mild_front_end() {
  matrix pre(33, 3), post(17, 3);
  for (std::size_t c = 0; c < 3; ++c) {
    const double bend = 0.1 * static_cast<double>(c + 1);
    const auto fill = [&](matrix& t, double b) {
      for (std::size_t i = 0; i < t.rows(); ++i) {
        const double u = static_cast<double>(i) / static_cast<double>(t.rows() - 1);
        t(i, c) = u + b * u * (1 - u);
      }
    };
    fill(pre, -bend);
    fill(post, bend);
  }
  const mat3 mix{{vec3{{0.8, 0.1, 0.02}}, vec3{{0.1, 0.75, 0.05}}, vec3{{0.05, 0.1, 0.85}}}};
  front_end fe;
  set3chluts(fe, &pre, &post, &mix);
  return fe;
}

}  // namespace corvantile
