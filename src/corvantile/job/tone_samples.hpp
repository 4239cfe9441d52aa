#pragma once
// A target tone curve given as samples instead of an exponent.

#include <string>
#include <vector>

#include "corvantile/utils/lut.hpp"

namespace corvantile {

/// Drive values and the luminances wanted there: equally many of both, at least 2, each in any unit. Drive values
/// rise, and the last luminance differs from the first. The curve is shifted and scaled to run from (0, 0) to (1, 1).
/// The first drive value always counts as 0.
struct tone_samples {
  std::string name;  ///< of the file, for messages
  std::vector<double> drive;
  std::vector<double> luminance;
};

/// The target tone curve: the normalised samples after monotone smoothing with `numsegs` pieces, at their own drive
/// values. Throws `fault::content`, naming the point, if the samples give no curve.
lut tone_curve(const tone_samples& samples, int numsegs);

}  // namespace corvantile
