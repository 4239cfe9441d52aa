#include "corvantile/residual/profile_grids.hpp"

#include <algorithm>

#include "corvantile/monitor/prepared.hpp"
#include "corvantile/residual/in_parallel.hpp"
#include "corvantile/utils/lut.hpp"

namespace corvantile {
namespace {

std::vector<vec3> even_grid(std::size_t size) {
  std::vector<vec3> places;
  places.reserve(size * size * size);
  const std::vector<double> at = linspace(0.0, 1.0, size);
  for (const double a : at)
    for (const double b : at)
      for (const double c : at) places.push_back({{a, b, c}});
  return places;
}

}  // namespace

std::vector<vec3> forward_grid(const prepared_residual_model& display, std::size_t size, unsigned threads) {
  std::vector<vec3> grid = even_grid(size);
  in_parallel(size, threads, [&](std::size_t plane) {
    const auto begin = grid.begin() + static_cast<std::ptrdiff_t>(plane * size * size);
    std::for_each_n(begin, size * size, [&](vec3& v) { v = display.xyz(v); });
  });
  return grid;
}

std::vector<vec3> backward_grid(const prepared_residual_model& display, const monitor& base,
                                const meant_colour& meant, std::size_t size, unsigned threads, const progress& told) {
  const prepared_monitor additive(base);
  std::vector<vec3> wanted = even_grid(size), drive(wanted.size());
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    wanted[i] = meant(wanted[i]);
    vec3 light = base.XYZ2RGB * (wanted[i] - base.darklight);
    for (double& l : light.v) l = std::clamp(l, 0.0, 1.0);
    drive[i] = additive.mon2inp(light);
  }
  drives_for(display, display.white(), wanted, drive, threads, told);
  return drive;
}

}  // namespace corvantile
