#pragma once
// The cost that minimisers are compared on.

#include <array>
#include <cstddef>
#include <span>

namespace corvantile::bench {

/// H. H. Rosenbrock's valley, The Computer Journal 3 (1960), in any number of dimensions. It costs hardly anything,
/// so the time is that of the minimiser itself.
inline double valley(std::span<const double> x) {
  double sum = 0;
  for (std::size_t i = 0; i + 1 < x.size(); ++i) {
    const double across = x[i + 1] - x[i] * x[i];
    sum += 100 * across * across + (1 - x[i]) * (1 - x[i]);
  }
  return sum;
}

inline constexpr std::array valley_start{-1.2, 1.0, -0.5};
inline constexpr double valley_tolerance = 1e-14;  // between the worst and the best value of the simplex

}  // namespace corvantile::bench
