#pragma once
// From grays measured with the tables loaded to factors for a second solve.

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
  std::size_t readings = 1;  ///< number of readings in this mean
};

/// Sorted by rising drive; the last level is at full drive.
struct measured_grays {
  std::string name;  ///< of the file, for messages
  std::vector<measured_gray> levels;
};

struct refinement {
  gray_factors factors;
  std::vector<vec3> smoothed;  ///< one for each measured gray, without its scatter: the second solve relies on these
};

/// What to ask of the model so that the display shows the grays that `first` was meant to show. Pass the factors to
/// `solve`, with the same settings and measurements. `first` may itself be the result of a refinement.
///
/// At each level, the display shows r times what the model predicts, with a ratio r for each of X, Y and Z. A smooth
/// curve through the ratios keeps noise out of the tables: `local_line` over the drive, each level weighted by its
/// readings and, like lightness, by the cube root of its Y. Then
/// - white is the brightest colour of the model that has the wanted chromaticity once multiplied by the ratios at
/// full
///   drive. Hue comes before luminance, and the luminance is what the display reaches, not what was promised: a power
///   limit cannot be corrected;
/// - grays follow the tone curve below that white, and the dark stays as measured. The ratios are taken at the drive
///   that shows the wanted luminance now: those of a power limit change quickly with the level. The model is asked
///   for the wanted X, Y and Z divided by these ratios.
/// Below the darkest measured level, its ratios apply.
///
/// Levels without light in X, Y or Z do not count. Throws `fault::content` if there are fewer than five others or
/// none at full drive, and `fault::inexpressible` for a job without a gray match, or one with `wptemp` or `hwid`,
/// which has more than one white.
refinement refine_grays(const correction& first, const settings& set, const measured_grays& grays);

}  // namespace corvantile
