#pragma once
// A display as its additive model says, corrected by what patches of mixed colours add to that.
//
// Displays that boost, dim or mix channels show something else for a mixture than the sum of its channels. The
// difference in L*a*b*, measured less additive model, is learnt as a smooth function of the drive
// (gaussian_process.hpp) and added to what the additive model says. Far from all patches it fades, and the additive
// model is left.

#include <span>
#include <vector>

#include "corvantile/monitor/monitor.hpp"
#include "corvantile/readings/prediction.hpp"
#include "corvantile/readings/readings.hpp"
#include "corvantile/residual/gaussian_process.hpp"

namespace corvantile {

/// Errors, CIEDE2000, of predicting patches.
struct patch_figures {
  prediction_figures additive;  ///< by the additive model
  prediction_figures left_out;  ///< by additive model and residual learnt from all patches but the one predicted
};

/// Lab(u) = Lab(additive model at u) + residual(u), L*a*b* with exact constants against the measured white.
struct residual_model {
  monitor base;               ///< the additive model
  gaussian_process residual;  ///< without centres if the residual is not used: then 0
  bool used = false;          ///< whether it predicts patches better than the additive model does alone
  std::size_t patches = 0;    ///< distinct drives that were learnt from, those on the ramps included
  std::size_t beside = 0;     ///< of these, how many stand beside the ramps
  patch_figures figures;      ///< of patches beside the ramps: what to expect of patches that nothing has seen
};

/// Learns from all readings of the display for which `base` was fitted, those of the ramps included; repeated ones
/// become their mean. The residual is used if it predicts the patches beside the ramps better, on average, one left
/// out at a time. `threads`: 0 for as many as the machine runs at once; the result does not depend on it.
///
/// Throws `fault::content` for readings that cannot be learnt from, see `merge_patches`, and for a `base` with a
/// front end. Up to 2500 patches take n^2 numbers of memory and n^3 time; more of them some 60 MB and a few seconds.
residual_model learn_residual(const monitor& base, std::span<const reading> all, unsigned threads = 0);

/// `base` alone, as a model without a residual.
residual_model additive_only(const monitor& base);

/// X, Y, Z of drives, in the unit of the measurements; drives are clipped to 0..1. For many, make a
/// `prepared_residual_model`.
vec3 predict(const residual_model& model, const vec3& drive);
matrix predict(const residual_model& model, const matrix& drives);

}  // namespace corvantile
