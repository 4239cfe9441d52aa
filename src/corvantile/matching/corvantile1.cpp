#include <algorithm>
#include <cmath>

#include "corvantile/colour/chromaticity.hpp"
#include "corvantile/colour/nonpar_monitor.hpp"
#include "corvantile/matching/matching.hpp"

namespace corvantile {

double blend(double t) { return t * t * (3 - 2 * t); }

static int status_of(const gray_ramp_params& params) {
  if (params.temp < 0) return 0;
  if (params.alpha >= params.beta) return 1;
  return params.beta > 1 ? 2 : 0;
}

gray_temperatures temperatures_of(const gray_ramp_params& params, const monitor& mon) {
  if (params.temp < 0 || status_of(params) != 0) return {};
  const double wptemp = params.wptemp == 0 ? xyz2cct(mon.whitepoint) : params.wptemp;
  return {params.temp, wptemp >= 0 ? std::optional(wptemp) : std::nullopt};
}

vec2 white_of_grays(const gray_ramp_params& params, const monitor& mon) {
  const gray_temperatures at = temperatures_of(params, mon);
  if (at.top) return chromaticity(blackbody_color(*at.top));
  if (at.ramp) return chromaticity(blackbody_color(*at.ramp));
  return params.white.value_or(chromaticity(mon.whitepoint));
}

gray_match cv1(const monitor& mon, const gray_ramp_params& params, const lut& gammalut, matrix& tab) {
  if (const int status = status_of(params); status != 0) return {.status = status};
  const gray_temperatures temperatures = temperatures_of(params, mon);
  if (!temperatures.ramp) {
    return {.ramp = chromaticity_lut(tab, mon, params.white.value_or(chromaticity(mon.whitepoint)), gammalut,
                                     params.alpha, params.restart, params.factors)};
  }
  gray_match match;
  match.ramp = colortemp_lut(tab, mon, *temperatures.ramp, gammalut, params.alpha, params.hwid, params.restart,
                             params.factors);
  if (!temperatures.top) return match;

  matrix shaded(tab.rows(), 3);
  match.top = colortemp_lut(shaded, mon, *temperatures.top, gammalut, params.alpha, params.hwid, params.restart);
  // Rows count from 1 here. A shading that would begin before the first row begins there. If it begins in the last
  // row, t = 0/0 and that row is NaN: deliberately kept so.
  const auto R = static_cast<double>(tab.rows());
  const double k0 = std::max(1.0, std::round(R * params.beta));
  for (auto row = static_cast<std::size_t>(k0) - 1; row < tab.rows(); ++row) {
    const double t = (static_cast<double>(row + 1) - k0) / (R - k0);
    const double w = blend(t);
    for (std::size_t c = 0; c < 3; ++c) tab(row, c) = tab(row, c) * (1 - w) + shaded(row, c) * w;
  }
  if (k0 == R) match.undefined_row = tab.rows() - 1;
  return match;
}

}  // namespace corvantile
