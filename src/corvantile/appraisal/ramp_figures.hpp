#pragma once
// What the ramps by themselves say about the readings and the display.

#include <array>

#include "corvantile/monitor/monitor.hpp"

namespace corvantile {

/// Scatter of lightness about a smooth curve, in L* with the ramp's own top as white: the root mean square distance
/// of levels from the cubic through their four neighbours, scaled to the noise of a single reading. 0 if there are no
/// such levels.
struct noise_figures {
  double dark = 0;  ///< drives below a quarter
  double middle = 0;
  double bright = 0;  ///< drives above three quarters
};

/// The noise of the first `ramps` ramps (white, red, green, blue). Needs seven levels.
noise_figures noise_of(const monitor& mon, std::size_t ramps);

/// How far the chromaticity of each ramp (white, red, green, blue), less the dark, gets from that at full drive: the
/// largest distance in CIE 1976 u'v' over the levels with at least 5 % of the ramp's light.
std::array<double, 4> wandering_of(const monitor& mon);

}  // namespace corvantile
