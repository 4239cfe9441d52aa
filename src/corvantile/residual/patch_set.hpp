#pragma once
// Readings of one display made ready to learn from.

#include <cstddef>
#include <span>
#include <vector>

#include "corvantile/monitor/monitor.hpp"
#include "corvantile/readings/readings.hpp"

namespace corvantile {

/// A display is learnt from at least this many patches beside the ramps; fewer say too little about the whole cube.
inline constexpr std::size_t least_patches = 25;

/// Distinct drives with the mean of their readings, those of the ramps first. Two vectors of one length.
struct patch_set {
  std::vector<vec3> drive;  ///< 0..1, each once if rounded to 1e-4
  std::vector<vec3> xyz;    ///< as measured
  std::size_t ramps = 0;    ///< how many stand at drives of the ramps that `base` was fitted from
};

/// Merges readings at one drive, in an order that does not depend on that of the readings. Drives are clipped to
/// 0..1. `base` tells the white, the dark and the ramps.
///
/// Throws `fault::content`, with the line where one reading is to blame, if
///   - a drive or a reading is not a finite number;
///   - X, Y or Z is below 0 by more than 1/1000 of the white's, or Y is not above 0 although some channel is driven
///     above 5 % and `base` expects more than 1/1000 of the white;
///   - a reading lies more than 5 CIEDE2000 off the mean of its patch;
///   - fewer than `least_patches` patches stand beside the ramps, or all of these stand on one line of the cube.
patch_set merge_patches(const monitor& base, std::span<const reading> all);

}  // namespace corvantile
