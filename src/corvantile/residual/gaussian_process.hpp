#pragma once
// Three functions on the cube of drives learnt from scattered values: Gaussian process regression of zero mean with
// one covariance for all three (kernel.hpp). Rasmussen and Williams, Gaussian Processes for Machine Learning (2006).

#include <cstddef>
#include <span>
#include <vector>

#include "corvantile/numerics/matrix.hpp"

namespace corvantile {

/// f(u) = sum of k(u, centre[i]) weight[i], three functions at once.
struct gaussian_process {
  std::vector<vec3> centre;
  std::vector<vec3> weight;
};

/// How much is learnt from exactly, and by how many centres beyond that.
struct gaussian_process_limits {
  std::size_t exact = 2500;              ///< up to here every sample is a centre
  std::size_t centres = 1000;            ///< above, as many of the samples at most ...
  std::size_t centres_at_work = 20'000;  ///< ... for so many samples; for more of them fewer, for the same work
  std::size_t left_out = 4096;           ///< samples that are left out one at a time at most, evenly chosen
};

/// One sample as the others predict it.
struct left_out_sample {
  std::size_t index = 0;
  vec3 error;  ///< value less prediction
};

struct learnt_process {
  gaussian_process f;
  std::vector<left_out_sample> left_out;  ///< by rising index
};

/// Learns from `value` at `drive` (0..1), all finite and not more than once at one place. Up to `limits.exact`
/// samples by one Cholesky factorisation of K + 0.1 I; above by the projection of all samples on the centres
/// (subset of regressors, section 8.3.1), which are chosen by pivoted Cholesky: the first `preferred` samples as far
/// as they tell anything new, then those that the centres so far explain least.
///
/// Leaving one out is done in closed form: (K^-1 y)_i / (K^-1)_ii, or the residual over 1 less its leverage.
/// `threads` as for `in_parallel`: results do not depend on it.
/// Takes n^2 numbers of memory up to `exact`, then some 12 centres^2.
learnt_process learn(std::span<const vec3> drive, std::span<const vec3> value, std::size_t preferred,
                     unsigned threads = 0, const gaussian_process_limits& limits = {});

/// f(u), summed from the first centre on.
vec3 value_at(const gaussian_process& f, const vec3& u);

}  // namespace corvantile
