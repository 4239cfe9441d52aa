#pragma once
// From grays that were measured behind the tables to factors for a second solve.

#include <cstddef>
#include <string>
#include <vector>

#include "corvantile/colour/gray_factors.hpp"
#include "corvantile/job/correction.hpp"
#include "corvantile/job/settings.hpp"
#include "corvantile/numerics/matrix.hpp"

namespace corvantile {

/// A gray as it was measured with the tables loaded.
struct measured_gray {
  double drive = 0;          ///< before the tables, 0 to 1
  vec3 xyz;                  ///< X, Y, Z, in any unit that all grays share
  std::size_t readings = 1;  ///< that it is the mean of
};

/// Levels that rise in drive, the last at full drive.
struct measured_grays {
  std::string name;  ///< of the file, for messages
  std::vector<measured_gray> levels;
};

struct refinement {
  gray_factors factors;
  /// The measured grays without their scatter, one for each: what the second solve takes the display to have shown.
  std::vector<vec3> smoothed;
};

/// What to ask the model for, so that the display shows what the grays of `first` were to be; to be given to `solve`
/// with the same settings and measurements. `first` may have been refined itself.
///
/// At each level, the display shows r times what the model says, with r a ratio for each of X, Y and Z. A smooth
/// curve through them (`local_line` over the drive, each level weighted by its readings and by the cube root of its
/// Y, as lightness goes) keeps noise out of the tables. Then
/// - white: the brightest colour of the model that has the wanted chromaticity once multiplied by the ratios at full
///   drive. Its hue comes before its luminance, and its luminance is what the display reaches, not what was
///   promised: a power limit cannot be corrected away;
/// - grays: the tone curve below that white, and the dark as measured. The wanted luminance is looked up among the
///   luminances shown, so that ratios which change quickly with the level, as those of a power limit do, are taken
///   where the new gray will lie and not where the old one lay; the wanted X, Y and Z divided by the ratios there
///   are what the model is asked for.
/// Below the darkest measured level the ratios stay as they are there.
///
/// Throws `fault::content` for fewer than five levels or none at full drive, not counting those without light in X, Y
/// or Z, which tell nothing; `fault::inexpressible` for a job without a gray match, or with `wptemp` or `hwid` in
/// effect, whose grays have no single white.
refinement refine_grays(const correction& first, const settings& set, const measured_grays& grays);

}  // namespace corvantile
