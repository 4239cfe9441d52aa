#include "corvantile/residual/inverse.hpp"

#include <algorithm>
#include <atomic>
#include <cmath>

#include "corvantile/residual/in_parallel.hpp"
#include "corvantile/residual/least_squares.hpp"
#include "corvantile/utils/failure.hpp"

namespace corvantile {
namespace {

// What is shown less what is wanted, in L*a*b*.
struct lab_errors {
  const prepared_residual_model& display;
  const vec3& lab;
  values_and_slopes operator()(const vec3& drive) const {
    values_and_slopes e = display.lab(drive);
    e.value = e.value - lab;
    return e;
  }
};

// The same in Oklab: in lightness, along the wanted hue, and across it.
struct oklab_errors {
  const prepared_residual_model& display;
  const oklab_space& space;
  vec3 wanted;
  mat3 turn;  // rows: lightness, along, across with the root of its weight

  oklab_errors(const prepared_residual_model& shown, const oklab_space& seen, const vec3& xyz)
      : display(shown), space(seen), wanted(xyz2oklab(seen, xyz)) {
    const double C = std::hypot(wanted[1], wanted[2]), weight = std::sqrt(1 + C / (C + 0.03));
    const double cosine = C > 0 ? wanted[1] / C : 1, sine = C > 0 ? wanted[2] / C : 0;
    turn = {{vec3{{1, 0, 0}}, vec3{{0, cosine, -weight * sine}}, vec3{{0, sine, weight * cosine}}}};
  }
  values_and_slopes operator()(const vec3& drive) const {
    const values_and_slopes shown = display.lab(drive);
    mat3 by_xyz;
    const vec3 oklab = xyz2oklab(space, lab2xyz_exact(shown.value, display.white()), by_xyz);
    return {turn * (oklab - wanted), turn * (by_xyz * (lab2xyz_slopes(shown.value, display.white()) * shown.slopes))};
  }
};

}  // namespace

found_drive drive_for(const prepared_residual_model& display, const oklab_space& space, const vec3& xyz,
                      const vec3& start) {
  const vec3 lab = xyz2lab_exact(xyz, display.white());
  const lab_errors by_lab{display, lab};
  constexpr double shown = shown_within * shown_within;
  constexpr least_squares_options exactly{.enough = 1e-10};
  least_squares best = minimize(by_lab, start, exactly);
  // Slopes vanish towards black, where a search sticks; and far off, half-way to mid gray is another way round.
  const vec3 half{{0.5, 0.5, 0.5}};
  for (const double share : {0.1, 0.5}) {
    if (best.cost <= shown) break;
    const least_squares again = minimize(by_lab, start + share * (half - start), exactly);
    if (again.cost < best.cost) best = again;
  }
  if (best.cost <= shown) return {best.drive, std::sqrt(best.cost)};

  const oklab_errors by_oklab(display, space, xyz);
  least_squares nearest = minimize(by_oklab, best.drive);
  for (const vec3& other : {start, nearest.drive + 0.1 * (half - nearest.drive)}) {
    const least_squares again = minimize(by_oklab, other);
    if (again.cost < nearest.cost) nearest = again;
  }
  return {nearest.drive, std::sqrt(dist2(display.lab(nearest.drive).value, lab))};
}

std::vector<double> drives_for(const prepared_residual_model& display, const vec3& white, std::span<const vec3> xyz,
                               std::span<vec3> drive, unsigned threads, const progress& told) {
  constexpr std::size_t at_once = 32;
  for (const vec3& colour : xyz) {
    if (!std::isfinite(colour[0] + colour[1] + colour[2])) {
      throw failure(fault::not_finite, "A colour that the display is to show is not a finite number");
    }
  }
  const oklab_space space = adapted_oklab(white);
  std::vector<double> miss(xyz.size());
  std::atomic<std::size_t> done = 0;
  const auto work = [&](std::size_t row) {
    const std::size_t end = std::min((row + 1) * at_once, xyz.size());
    for (std::size_t i = row * at_once; i < end; ++i) {
      const found_drive found = drive_for(display, space, xyz[i], drive[i]);
      drive[i] = found.drive;
      miss[i] = found.miss;
    }
    done += end - row * at_once;
  };
  in_parallel((xyz.size() + at_once - 1) / at_once, threads, work, [&] {
    if (told) told(done, xyz.size());
  });
  if (told) told(xyz.size(), xyz.size());
  return miss;
}

}  // namespace corvantile
