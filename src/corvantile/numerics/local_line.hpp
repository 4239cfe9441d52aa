#pragma once
// The smooth part of noisy samples.

#include <span>
#include <vector>

namespace corvantile {

/// Samples y over rising x on [0, 1] with weights above 0, at least one of each.
struct weighted_samples {
  std::vector<double> x, y, weight;
};

/// The smooth part of samples at `at`: the value there of the straight line of weighted least squares through those
/// nearer than `reach`, each counting less the farther away it lies (tricube weights). Where fewer than three are as
/// near, the reach grows to the third.
///
/// After Cleveland, Journal of the American Statistical Association 74 (1979), without his robustness steps.
double local_line(const weighted_samples& samples, double at, double reach);

}  // namespace corvantile
