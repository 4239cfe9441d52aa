#pragma once
// What the ramps themselves tell about the readings and the display.

#include <array>

#include "corvantile/monitor/monitor.hpp"

namespace corvantile {

/// Scatter of lightness about a smooth curve, in units of L* with the ramp's own top as white: root mean square of
/// what single levels are off the cubic through their four neighbours, scaled to that of a single reading. 0 where
/// there are no such levels.
struct noise_figures {
  double dark = 0;  ///< drives below a quarter
  double middle = 0;
  double bright = 0;  ///< drives above three quarters
};

/// Over the first `ramps` ramps of the file (white, red, green, blue). Needs seven levels.
noise_figures noise_of(const monitor& mon, std::size_t ramps);

/// How far the chromaticity of each ramp's light, less the dark, lies from that at full drive: the largest distance
/// in CIE 1976 u'v' over the levels with at least 5 % of the ramp's light. White, red, green, blue.
std::array<double, 4> wandering_of(const monitor& mon);

}  // namespace corvantile
