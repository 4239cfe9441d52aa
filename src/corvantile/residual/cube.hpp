#pragma once
// A correction through a cube of drives: each of its nodes makes the display show what a target display shows.

#include <cstddef>
#include <functional>
#include <vector>

#include "corvantile/colour/chromaticity.hpp"
#include "corvantile/residual/inverse.hpp"
#include "corvantile/utils/lut.hpp"

namespace corvantile {

/// What the corrected display is to show for a signal s, in the unit of the measurements:
///   primaries tone(s) + share dark
/// `share` is 1 for all signals; or, with `fade` above 0, `dark_share` of the largest of the three signals: 1 for
/// black, and 0 from a signal of `fade` on.
struct cube_target {
  mat3 primaries;   ///< column c is X, Y, Z of channel c at full signal; their sum is the white
  lut tone;         ///< signal 0..1 to light 0..1, for each channel alike
  vec3 dark;        ///< X, Y, Z of black
  double fade = 0;  ///< as `alpha` of the gray match
};

/// The target of those chromaticities and a white of that luminance, dark light not counted.
cube_target make_cube_target(const chromaticity_table& xy, double luminance, lut tone, const vec3& dark,
                             double fade = 0);

/// X, Y, Z of one signal.
vec3 colour_of(const cube_target& target, const vec3& signal);

/// Its white: X, Y, Z of full signal in all channels.
vec3 white_of(const cube_target& target);

/// size^3 nodes of an even grid over 0..1, red running fastest.
struct drive_cube {
  std::size_t size = 0;
  std::vector<vec3> drive;   ///< what the display gets
  std::vector<double> miss;  ///< of each node, as in `found_drive`: above `shown_within` the target is out of reach
};

/// Drive values in 0..1 to drive values: what tables do.
using drive_map = std::function<vec3(const vec3&)>;

/// The cube for `target`. `tables` gives the starts, such as the additive model's answer; it is called on this thread
/// only. Each node stands alone, so the result does not depend on `threads`; but where drives fall from one gray node
/// to the next, as a model learnt from noisy readings may ask for, these become equal. `size` is at least 2. `told`
/// is given counts of nodes.
drive_cube make_cube(const prepared_residual_model& display, const cube_target& target, const drive_map& tables,
                     std::size_t size, unsigned threads = 0, const progress& told = {});

/// The cube's answer for a signal (clipped to 0..1), by tetrahedral interpolation.
vec3 through(const drive_cube& cube, const vec3& signal);

}  // namespace corvantile
