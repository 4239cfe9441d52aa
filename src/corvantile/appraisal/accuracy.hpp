#pragma once
// How well a model predicts the samples of its own measurement file.

#include <vector>

#include "corvantile/monitor/monitor.hpp"
#include "corvantile/readings/prediction.hpp"

namespace corvantile {

/// CIEDE2000 of the model against the samples; L*a*b* is taken against the measured white.
struct accuracy_figures {
  difference_figures unseen;        ///< samples that the four fitted ramps do not hold
  difference_figures near_gray;     ///< those among them that are near gray
  difference_figures white_ramp;    ///< the gray ramp itself, dark included: seen only where the ramps are derived
  std::vector<prediction> patches;  ///< every unseen patch, the worst first
};

/// `mon` is fitted from `samples`. An extra sample at the drive of a ramp's sample is not unseen, unless that ramp
/// was derived; and one whose X, Y, Z are not finite numbers is no sample.
accuracy_figures accuracy_of(const monitor& mon, const measurements& samples);

}  // namespace corvantile
