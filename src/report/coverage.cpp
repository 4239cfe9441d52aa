#include "report/coverage.hpp"

#include <cmath>
#include <utility>
#include <vector>

namespace corvantile {
namespace {

double cross(const vec2& a, const vec2& b) { return a[0] * b[1] - a[1] * b[0]; }

// Above 0 for vertices that run counter-clockwise.
template <class Vertices>
double signed_area(const Vertices& p) {
  double twice = 0;
  for (std::size_t i = 0; i < p.size(); ++i) twice += cross(p[i], p[(i + 1) % p.size()]);
  return twice / 2;
}

// The part of `p` to the left of the line from a to b: one step of Sutherland and Hodgman's clipping (1974).
std::vector<vec2> left_of(const std::vector<vec2>& p, const vec2& a, const vec2& b) {
  const auto side = [&](const vec2& q) { return cross(b - a, q - a); };
  std::vector<vec2> kept;
  for (std::size_t i = 0; i < p.size(); ++i) {
    const vec2& q = p[i];
    const vec2& next = p[(i + 1) % p.size()];
    const double here = side(q);
    const double there = side(next);
    if (here >= 0) kept.push_back(q);
    if ((here >= 0) != (there >= 0)) kept.push_back(q + here / (here - there) * (next - q));
  }
  return kept;
}

}  // namespace

double coverage(const triangle& display, const triangle& wanted) {
  triangle d = display;
  if (signed_area(d) < 0) std::swap(d[1], d[2]);
  std::vector<vec2> common(wanted.begin(), wanted.end());
  const double all = std::abs(signed_area(wanted));
  for (std::size_t i = 0; i < 3; ++i) common = left_of(common, d[i], d[(i + 1) % 3]);
  const double share = std::abs(signed_area(common)) / all;
  return std::isfinite(signed_area(d)) && std::isfinite(share) ? share : std::nan("");
}

}  // namespace corvantile
