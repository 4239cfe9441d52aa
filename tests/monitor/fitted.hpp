#pragma once
// Simulated displays and their fits, for the tests of everything above the numerics.

#include "corvantile/monitor/prepared.hpp"
#include "tools/simulated_display.hpp"

namespace corvantile {

inline measurements measured(const simulated_display& d) {
  return {"simulated", sample_rows(d), d.levels, d.version};
}

/// The model of `d`, in 5 pieces by default.
inline monitor fitted(const simulated_display& d, std::optional<int> numsegs = {}, double minslope = 0.0) {
  return makemonitor(measured(d), numsegs, minslope);
}

/// A display that is ideal in nothing: unequal channels, bent X and Z, a toe, a black level.
inline simulated_display uneven_display() {
  return {.gamma = {{2.1, 2.2, 2.4}}, .toe = 0.02, .nX = {{0.05, -0.03, 0.04}}, .nZ = {{0.02, 0.06, -0.02}}};
}

/// An n x 3 table in even steps of u: u + bend u (1 - u), with once, twice and three times the bend in the three
/// columns.
inline matrix bent_table(std::size_t n, double bend) {
  matrix t(n, 3);
  for (std::size_t i = 0; i < n; ++i) {
    const double u = static_cast<double>(i) / static_cast<double>(n - 1), b = bend * u * (1 - u);
    set_row3(t, i, {{u + b, u + 2 * b, u + 3 * b}});
  }
  return t;
}

/// A front end that bends and mixes but stays invertible.
inline front_end mild_front_end() {
  const matrix pre = bent_table(33, -0.1), post = bent_table(17, 0.1);
  const mat3 mix{{vec3{{0.8, 0.1, 0.02}}, vec3{{0.1, 0.75, 0.05}}, vec3{{0.05, 0.1, 0.85}}}};
  front_end fe;
  set3chluts(fe, &pre, &post, &mix);
  return fe;
}

inline const monitor plain = fitted(uneven_display());
inline const monitor composite = monwfe(plain, mild_front_end());

}  // namespace corvantile
