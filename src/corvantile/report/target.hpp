#pragma once
// What a correction was asked for, as a display: primaries, white, tone curve and black.

#include <functional>
#include <optional>

#include "corvantile/matching/matching.hpp"
#include "corvantile/numerics/matrix.hpp"

namespace corvantile {

/// Drive to the XYZ asked for. Its channels add up, share one tone curve and reach `white` at full drive.
struct asked_display {
  mat3 primaries;                      ///< column c is X, Y, Z of channel c at full drive, the dark taken off
  vec3 white;                          ///< X, Y, Z at full drive, dark included
  vec3 dark;                           ///< X, Y, Z at zero drive
  std::function<double(double)> tone;  ///< drive to linear value, 0 to 1
  std::optional<double> dark_below;    ///< grays: the drive below which the dark is blended in; else all have it
};

/// With primaries of these chromaticities (x, y; red, green, blue), for a white of chromaticity `white` at luminance
/// `luminance`, dark included.
asked_display make_asked_display(const triangle& primaries, const vec2& white, double luminance, const vec3& dark,
                                 std::function<double(double)> tone);

/// The XYZ asked for.
vec3 asked_xyz(const asked_display& a, const vec3& drive);

/// The drive for which `xyz` would be asked, each channel within 0 to 1: bisection on the tone curve, which rises.
vec3 asked_drive(const asked_display& a, const vec3& xyz);

}  // namespace corvantile
