#pragma once
// Three smooth functions on the cube as uniform cubic B-splines: a value and all nine slopes in some 100 ns.

#include <algorithm>
#include <cstddef>
#include <span>
#include <vector>

#include "corvantile/numerics/matrix.hpp"
#include "corvantile/numerics/two_lanes.hpp"

namespace corvantile {

/// Three values, and in column c of `slopes` their changes with coordinate c.
struct values_and_slopes {
  vec3 value;
  mat3 slopes;
};

/// f(u) = sum of c(i, j, k) B(x - i) B(y - j) B(z - k), x = u_0 cells + margin and so on, B the cubic B-spline:
/// twice continuously differentiable, and equal at the grid's points to the samples it was made from.
class spline_grid {
 public:
  static constexpr std::size_t cells = 24;  ///< along 0..1
  static constexpr std::size_t margin = 3;  ///< samples beyond either end, which keep the ends' effect away
  static constexpr std::size_t points = cells + 1 + 2 * margin;  ///< along each axis

  /// The coordinate, 0..1 and beyond, of sample `i` along an axis.
  static constexpr double coordinate(std::size_t i) {
    return (static_cast<double>(i) - static_cast<double>(margin)) / static_cast<double>(cells);
  }

  /// From `points`^3 samples: the one at grid point (i, j, k) is sample (i points + j) points + k. Beyond the grid,
  /// second differences of coefficients are taken to be 0. Prefilter after Unser, Aldroubi and Eden, IEEE
  /// Transactions on Signal Processing 41 (1993).
  explicit spline_grid(std::span<const vec3> samples);

  /// Value and slopes at `u`, each coordinate from 0 to 1.
  values_and_slopes operator()(const vec3& u) const;

 private:
  struct coefficients {
    two_lanes first, second;  // of functions 0 and 1, and 2 and none
  };
  std::vector<coefficients> c_;
};

}  // namespace corvantile
