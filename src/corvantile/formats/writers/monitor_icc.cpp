#include "corvantile/formats/writers/monitor_icc.hpp"

#include <algorithm>

namespace corvantile {

profiled_display as_measured(const monitor& mon, std::size_t points) {
  profiled_display display;
  display.curves = inp2mon_mat(mon, in_all_channels(linspace(0.0, 1.0, points)));
  for (double& v : display.curves.data()) v = std::clamp(v, 0.0, 1.0);
  display.colorants = mon.RGB2XYZ;
  display.white = mon.whitepoint;
  return display;
}

std::string monitor_icc_file(const profiled_display& display, const description& about) {
  return icc_profile("monitor-icc", display, about);
}

}  // namespace corvantile
