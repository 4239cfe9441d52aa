#pragma once
// A model with a residual made ready for being asked many times: value and slopes in a third of a microsecond,
// whatever the number of patches.

#include <memory>

#include "corvantile/residual/residual_model.hpp"
#include "corvantile/residual/spline_grid.hpp"

namespace corvantile {

/// What is shown for drives, as `predict` of the model says it, to some 4e-4 in L*a*b*. A copy shares its tables; any
/// number of threads may ask one at a time or at once.
///
/// The additive model and those terms of the residual that depend on one number, a channel's drive or the mean of all
/// three, are tables of 1024 pieces, cubic Hermite; the term over all channels is sampled on a `spline_grid`.
class prepared_residual_model {
 public:
  /// Takes some 6000 covariances a centre; `threads` as for `in_parallel`: the result does not depend on it.
  /// Throws `fault::content` if the model shows something that is not finite.
  explicit prepared_residual_model(const residual_model& model, unsigned threads = 0);

  const vec3& white() const { return white_; }  ///< X, Y, Z that L*a*b* is taken against: as measured
  const vec3& dark() const { return dark_; }    ///< X, Y, Z that the model shows at zero drive

  /// L*a*b* (exact constants), and in column c of `slopes` its change with drive c. Drives are from 0 to 1.
  values_and_slopes lab(const vec3& drive) const;

  /// X, Y, Z in the unit of the measurements; drives are clipped to 0..1.
  vec3 xyz(const vec3& drive) const;

 private:
  struct tables;
  std::shared_ptr<const tables> tables_;
  vec3 white_, dark_;
  vec3 dark_share_;  // of the additive model, over the white
};

}  // namespace corvantile
