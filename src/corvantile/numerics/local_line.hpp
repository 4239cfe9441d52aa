#pragma once
// The smooth part of noisy samples.

#include <span>
#include <vector>

namespace corvantile {

/// Samples y over rising x in [0, 1], with weights above 0. All three have one length, at least 1.
struct weighted_samples {
  std::vector<double> x, y, weight;
};

/// The smooth part of the samples at `at`: the value there of a straight line, fitted by weighted least squares to
/// the samples nearer than `reach`. Samples count less the farther away they are (tricube weights). If fewer than
/// three are that near, the reach grows to the third.
///
/// After Cleveland, Journal of the American Statistical Association 74 (1979), without his robustness steps.
double local_line(const weighted_samples& samples, double at, double reach);

}  // namespace corvantile
