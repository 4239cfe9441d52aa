#include "corvantile/appraisal/gamut.hpp"

#include <cmath>
#include <utility>

namespace corvantile {
namespace {

// Twice the signed area of the triangle a, b, c: above 0 if c is to the left of the line from a to b.
double cross(const vec2& a, const vec2& b, const vec2& c) {
  return (b[0] - a[0]) * (c[1] - a[1]) - (b[1] - a[1]) * (c[0] - a[0]);
}

double area_of(const std::array<vec2, 3>& triangle) { return polygon_area({triangle.begin(), triangle.end()}); }

}  // namespace

double uv1976_distance(const vec2& xy_a, const vec2& xy_b) {
  const vec2 d = xy2uv1976(xy_a) - xy2uv1976(xy_b);
  return std::hypot(d[0], d[1]);
}

std::array<vec2, 3> primaries_in_uv1976(const chromaticity_table& xy) {
  return {xy2uv1976(xy.red), xy2uv1976(xy.green), xy2uv1976(xy.blue)};
}

double polygon_area(const std::vector<vec2>& corners) {
  double twice = 0;
  for (std::size_t i = 2; i < corners.size(); ++i) twice += cross(corners[0], corners[i - 1], corners[i]);
  return std::abs(twice) / 2;
}

std::vector<vec2> clipped(std::vector<vec2> subject, const std::array<vec2, 3>& window) {
  const double sense = cross(window[0], window[1], window[2]) < 0 ? -1 : 1;
  for (std::size_t side = 0; side < 3; ++side) {
    const vec2 &a = window[side], &b = window[(side + 1) % 3];
    std::vector<vec2> kept;
    for (std::size_t i = 0; i < subject.size(); ++i) {
      const vec2 &p = subject[i], &q = subject[(i + 1) % subject.size()];
      const double at_p = sense * cross(a, b, p), at_q = sense * cross(a, b, q);
      if (at_p >= 0) kept.push_back(p);
      if ((at_p >= 0) != (at_q >= 0)) kept.push_back(p + (at_p / (at_p - at_q)) * (q - p));
    }
    subject = std::move(kept);
  }
  return subject;
}

double coverage(const std::array<vec2, 3>& display, const std::array<vec2, 3>& wanted) {
  const double share = polygon_area(clipped({wanted.begin(), wanted.end()}, display)) / area_of(wanted);
  return std::isfinite(area_of(display)) && std::isfinite(share) ? share : std::nan("");
}

std::array<gamut_comparison, 4> compare_gamut(const chromaticity_table& display) {
  const std::array<vec2, 3> own = primaries_in_uv1976(display);
  std::array<gamut_comparison, 4> all;
  for (std::size_t i = 0; i < all.size(); ++i) {
    const auto& [name, xy] = standard_gamuts[i];
    const std::array<vec2, 3> standard = primaries_in_uv1976(xy);
    all[i] = {name, area_of(own) / area_of(standard), coverage(own, standard)};
  }
  return all;
}

}  // namespace corvantile
