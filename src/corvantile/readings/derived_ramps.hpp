#pragma once
// Red, green and blue ramps computed from a gray ramp and the three full primaries.

#include <cstddef>
#include <span>
#include <vector>

#include "corvantile/numerics/matrix.hpp"

namespace corvantile {

/// What a gray ramp says about the three channels.
struct derived_ramps {
  /// levels x 3: light of each channel as a fraction of its primary's, m(d) = P^-1 (W(d) - K). Never falling and
  /// never below 0. At full drive 1 only where the channels add up to the white.
  matrix share;
  std::size_t repaired = 0;  ///< values that noise had made fall or go below 0, and that were interpolated
};

/// `gray` holds X, Y, Z of the gray levels above zero, rising, full drive last; `dark` is K; column c of `primaries`
/// is primary c at full drive less K. A repaired value lies between its sound neighbours as the gray's luminance
/// does; the value at full drive is never repaired. `gray` holds at least one level. Primaries on one line give
/// values that are not finite.
derived_ramps derive_ramps(std::span<const vec3> gray, const vec3& dark, const mat3& primaries);

}  // namespace corvantile
