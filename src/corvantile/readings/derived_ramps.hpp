#pragma once
// Red, green and blue ramps computed from a gray ramp and the three full primaries.

#include <cstddef>
#include <span>
#include <vector>

#include "corvantile/numerics/matrix.hpp"

namespace corvantile {

/// What a gray ramp says about the three channels.
struct derived_ramps {
  /// levels x 3: light of each channel as a fraction of its primary's, m(d) = P^-1 (W(d) - K). It never falls and is
  /// never below 0. At full drive it is 1 only if the channels add up to the white.
  matrix share;
  std::size_t repaired = 0;  ///< values that fell or were below 0, from noise, and were interpolated
};

/// `gray` holds X, Y, Z of at least one gray level above zero, rising, full drive last; `dark` is K; column c of
/// `primaries` is primary c at full drive less K. A repaired value divides the way between its sound neighbours as
/// the gray's luminance does; the value at full drive is never repaired. Primaries on one line give values that are
/// not finite.
derived_ramps derive_ramps(std::span<const vec3> gray, const vec3& dark, const mat3& primaries);

}  // namespace corvantile
