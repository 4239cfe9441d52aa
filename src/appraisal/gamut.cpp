#include "appraisal/gamut.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

#include "colour/chromaticity.hpp"

namespace corvantile {
namespace {

// Twice the signed area of the triangle a, b, c: above 0 where c lies to the left of the way from a to b.
double cross(const vec2& a, const vec2& b, const vec2& c) {
  return (b[0] - a[0]) * (c[1] - a[1]) - (b[1] - a[1]) * (c[0] - a[0]);
}

std::array<vec2, 3> in_uv1976(const primaries_xy& p) { return {uv1976(p[0]), uv1976(p[1]), uv1976(p[2])}; }

}  // namespace

vec2 uv1976(const vec2& xy) {
  const vec2 uv = xy2uv_vec(xy);
  return {{uv[0], 1.5 * uv[1]}};
}

double uv1976_distance(const vec2& xy_a, const vec2& xy_b) {
  const vec2 d = uv1976(xy_a) - uv1976(xy_b);
  return std::hypot(d[0], d[1]);
}

constexpr std::array<standard_gamut, 4> standard_gamuts{{
    {"sRGB", {{{{0.640, 0.330}}, {{0.300, 0.600}}, {{0.150, 0.060}}}}},
    {"Display P3", {{{{0.680, 0.320}}, {{0.265, 0.690}}, {{0.150, 0.060}}}}},
    {"Adobe RGB", {{{{0.640, 0.330}}, {{0.210, 0.710}}, {{0.150, 0.060}}}}},
    {"BT.2020", {{{{0.708, 0.292}}, {{0.170, 0.797}}, {{0.131, 0.046}}}}},
}};

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

std::array<gamut_comparison, 4> compare_gamut(const primaries_xy& display) {
  const std::array<vec2, 3> own = in_uv1976(display);
  std::array<gamut_comparison, 4> all;
  for (std::size_t i = 0; i < all.size(); ++i) {
    const std::array<vec2, 3> standard = in_uv1976(standard_gamuts[i].primaries);
    const double whole = polygon_area({standard.begin(), standard.end()});
    all[i] = {standard_gamuts[i].name, polygon_area({own.begin(), own.end()}) / whole,
              polygon_area(clipped({standard.begin(), standard.end()}, own)) / whole};
  }
  return all;
}

}  // namespace corvantile
