#include <algorithm>
#include <cmath>

#include "colour/chromaticity.hpp"
#include "colour/nonpar_monitor.hpp"
#include "matching/matching.hpp"

namespace corvantile {

double blend(double t) { return t * t * (3 - 2 * t); }

int cv1(const monitor& mon, const gray_ramp_params& params, const lut& gammalut, matrix& tab) {
  if (params.temp < 0) {
    chromaticity_lut(tab, mon, chromaticity(mon.whitepoint).v, gammalut, params.alpha);
    return 0;
  }
  const double wptemp = params.wptemp == 0 ? xyz2cct(mon.whitepoint.v) : params.wptemp;
  if (params.alpha >= params.beta) return 1;
  if (params.beta > 1) return 2;
  colortemp_lut(tab, mon, params.temp, gammalut, params.alpha, params.hwid);
  if (!(wptemp >= 0)) return 0;

  matrix shaded(tab.rows(), 3);
  colortemp_lut(shaded, mon, wptemp, gammalut, params.alpha, params.hwid);
  // Rows are counted from 1 here, and a shading that would begin before the first begins there. beta = 1 makes t =
  // 0/0 in the one row that is left, and the row not a number: kept so.
  const auto R = static_cast<double>(tab.rows());
  const double k0 = std::max(1.0, std::round(R * params.beta));
  for (auto row = static_cast<std::size_t>(k0) - 1; row < tab.rows(); ++row) {
    const double t = (static_cast<double>(row + 1) - k0) / (R - k0);
    const double w = blend(t);
    for (std::size_t c = 0; c < 3; ++c) tab(row, c) = tab(row, c) * (1 - w) + shaded(row, c) * w;
  }
  return 0;
}

}  // namespace corvantile
