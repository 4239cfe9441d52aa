#include "corvantile/residual/cube.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>
#include <utility>

#include "corvantile/colour/nonpar_monitor.hpp"
#include "corvantile/matching/matching.hpp"

namespace corvantile {
namespace {

// The never falling sequence nearest to `v`, by pooling neighbours that fall into their mean. Ayer, Brunk, Ewing,
// Reid and Silverman, Annals of Mathematical Statistics 26 (1955).
std::vector<double> never_falling(std::span<const double> v) {
  struct pool {
    double sum;
    std::size_t n;
    double mean() const { return sum / static_cast<double>(n); }
  };
  std::vector<pool> pools;
  for (const double x : v) {
    pools.push_back({x, 1});
    while (pools.size() > 1 && pools[pools.size() - 2].mean() > pools.back().mean()) {
      const pool last = pools.back();
      pools.pop_back();
      pools.back() = {pools.back().sum + last.sum, pools.back().n + last.n};
    }
  }
  std::vector<double> rising;
  for (const pool& p : pools) rising.insert(rising.end(), p.n, p.mean());
  return rising;
}

// A model learnt from noisy readings may fall towards black; displays do not.
void make_grays_rise(const prepared_residual_model& display, std::span<const vec3> wanted, drive_cube& cube) {
  const std::size_t n = cube.size, step = 1 + n + n * n;
  std::vector<vec3> gray(n);
  for (std::size_t c = 0; c < 3; ++c) {
    std::vector<double> drive(n);
    for (std::size_t i = 0; i < n; ++i) drive[i] = cube.drive[i * step][c];
    drive = never_falling(drive);
    for (std::size_t i = 0; i < n; ++i) gray[i][c] = drive[i];
  }
  for (std::size_t i = 0; i < n; ++i) {
    const std::size_t node = i * step;
    if (gray[i] == cube.drive[node]) continue;
    cube.drive[node] = gray[i];
    const vec3 lab = xyz2lab_exact(wanted[node], display.white());
    cube.miss[node] = std::sqrt(dist2(display.lab(gray[i]).value, lab));
  }
}

}  // namespace

cube_target make_cube_target(const chromaticity_table& xy, double luminance, lut tone, const vec3& dark,
                             double fade) {
  return {c2rgb_type(xy) * luminance, std::move(tone), dark, fade};
}

vec3 colour_of(const cube_target& target, const vec3& signal) {
  const vec3 light{{interp(target.tone, signal[0]), interp(target.tone, signal[1]), interp(target.tone, signal[2])}};
  const double share = target.fade > 0 ? dark_share(std::ranges::max(signal.v), target.fade) : 1;
  return target.primaries * light + share * target.dark;
}

vec3 white_of(const cube_target& target) { return colour_of(target, {{1, 1, 1}}); }

drive_cube make_cube(const prepared_residual_model& display, const cube_target& target, const drive_map& tables,
                     std::size_t size, unsigned threads, const progress& told) {
  drive_cube cube{size, {}, {}};
  std::vector<vec3> wanted;
  cube.drive.reserve(size * size * size);
  wanted.reserve(size * size * size);
  const std::vector<double> grid = linspace(0.0, 1.0, size);
  for (const double b : grid)
    for (const double g : grid)
      for (const double r : grid) {
        cube.drive.push_back(tables({{r, g, b}}));
        wanted.push_back(colour_of(target, {{r, g, b}}));
      }
  cube.miss = drives_for(display, white_of(target), wanted, cube.drive, threads, told);
  make_grays_rise(display, wanted, cube);
  return cube;
}

vec3 through(const drive_cube& cube, const vec3& signal) {
  const std::size_t n = cube.size;
  const std::array<std::size_t, 3> stride{1, n, n * n};
  std::array<std::pair<double, std::size_t>, 3> way;  // how far along an axis, and where that leads
  std::size_t at = 0;
  for (std::size_t c = 0; c < 3; ++c) {
    const double x = std::clamp(signal[c], 0.0, 1.0) * static_cast<double>(n - 1);
    const std::size_t i = std::min(static_cast<std::size_t>(x), n - 2);
    at += i * stride[c];
    way[c] = {x - static_cast<double>(i), stride[c]};
  }
  std::ranges::stable_sort(way, std::ranges::greater{}, [](const auto& w) { return w.first; });
  vec3 v = (1 - way[0].first) * cube.drive[at];
  for (std::size_t k = 0; k < 3; ++k) {
    at += way[k].second;
    v = v + (way[k].first - (k < 2 ? way[k + 1].first : 0)) * cube.drive[at];
  }
  return v;
}

}  // namespace corvantile
