#include <array>
#include <cmath>
#include <limits>
#include <optional>

#include "corvantile/colour/chromaticity.hpp"
#include "corvantile/matching/matching.hpp"
#include "corvantile/numerics/linsolv.hpp"

namespace corvantile {

namespace {

bool within_both(const intersection& i) { return i.t >= 0 && i.s >= 0 && i.t <= 1 && i.s <= 1; }

/// Edge i of a triangle runs from vertex i to the next. For a gamut: red-green, green-blue, blue-red.
segment edge(const triangle& tri, std::size_t i) { return {tri[i], tri[(i + 1) % 3]}; }

/// `e` moved by `d` along its normal, towards `inside`.
segment moved(const segment& e, const vec2& inside, double d) {
  const vec2 along = e.end - e.start;
  vec2 normal = vec2{{-along[1], along[0]}} / length(along);
  const vec2 in = inside - e.start;
  if (normal[0] * in[0] + normal[1] * in[1] < 0) normal = -1.0 * normal;
  return {e.start + d * normal, e.end + d * normal};
}

triangle each_vertex(vec2 (*map)(const vec2&), const triangle& tri) {
  return {map(tri[0]), map(tri[1]), map(tri[2])};
}

}  // namespace

matrix chromaticities(const matrix& xyz) {
  matrix xy(xyz.rows(), 2);
  for (std::size_t i = 0; i < xyz.rows(); ++i) {
    const vec2 c = chromaticity(row3(xyz, i));
    xy(i, 0) = c[0];
    xy(i, 1) = c[1];
  }
  return xy;
}

double uvdist(const vec2& xy1, const vec2& xy2) { return length(xy2uv_vec(xy1) - xy2uv_vec(xy2)); }

chromaticity_table rgb2c_type(const mat3& rgb) {
  return {chromaticity(rgb.col[0]), chromaticity(rgb.col[1]), chromaticity(rgb.col[2]),
          chromaticity(rgb.col[0] + rgb.col[1] + rgb.col[2])};
}

matrix rgb2c_mat(const matrix& rgb) {
  mat3 m;
  for (std::size_t c = 0; c < 3; ++c) m.col[c] = {{rgb(0, c), rgb(1, c), rgb(2, c)}};
  const auto [red, green, blue, white] = rgb2c_type(m);
  matrix xy(4, 2);
  for (std::size_t k = 0; k < 2; ++k) {
    xy(0, k) = red[k];
    xy(1, k) = green[k];
    xy(2, k) = blue[k];
    xy(3, k) = white[k];
  }
  return xy;
}

mat3 c2rgb_type(const chromaticity_table& c) {
  mat3 p{{xy2xyz(c.red), xy2xyz(c.green), xy2xyz(c.blue)}};
  const vec3 scale = inv(p) * xy2xyz(c.white);
  for (std::size_t i = 0; i < 3; ++i) p.col[i] = scale[i] * p.col[i];
  return p;
}

matrix c2rgb_mat(const matrix& c) {
  const auto row = [&](std::size_t i) { return vec2{{c(i, 0), c(i, 1)}}; };
  const mat3 m = c2rgb_type({.red = row(0), .green = row(1), .blue = row(2), .white = row(3)});
  matrix rgb(3, 3);
  for (std::size_t i = 0; i < 3; ++i) set_row3(rgb, i, {{m(i, 0), m(i, 1), m(i, 2)}});
  return rgb;
}

std::optional<intersection> intersection_parameters(const segment& seg1, const segment& seg2) {
  constexpr double parallel = 100 * std::numeric_limits<double>::epsilon();
  const vec2 d1 = seg1.end - seg1.start;
  const vec2 d2 = seg2.end - seg2.start;
  const double den = d1[1] * d2[0] - d1[0] * d2[1];
  if (std::abs(den) < parallel) return std::nullopt;
  const vec2 e = seg2.start - seg1.start;
  const double t = (d2[0] * e[1] - d2[1] * e[0]) / den;
  const double s = (d1[0] * e[1] - e[0] * d1[1]) / den;
  return intersection{t, s, seg1.start + t * d1};
}

bool segs_intersect(const segment& seg1, const segment& seg2) {
  const auto meet = intersection_parameters(seg1, seg2);
  return meet && within_both(*meet);
}

double inradius(const triangle& tri) {
  const double a = length(tri[1] - tri[0]);
  const double b = length(tri[2] - tri[1]);
  const double c = length(tri[0] - tri[2]);
  const double p = (a + b + c) / 2;  // Heron's half-perimeter
  return std::sqrt((p - a) * (p - b) * (p - c) / p);
}

shrunk_triangle interior_triangle(const triangle& tri, double d) {
  const vec2 centroid = (tri[0] + tri[1] + tri[2]) / 3;
  triangle inner = tri;  // stays if the lines are parallel, in a degenerate triangle
  for (std::size_t i = 0; i < 3; ++i) {
    const segment leaving = moved(edge(tri, i), centroid, d);
    const segment arriving = moved(edge(tri, (i + 2) % 3), centroid, d);
    // The edge that starts at the vertex comes first: its t is exactly 0 if nothing moves.
    if (const auto vertex = intersection_parameters(leaving, arriving)) inner[i] = vertex->point;
  }
  return {inner, d < inradius(tri)};
}

adjusted_primaries adjust_primaries(const mat3& target, const triangle& gamut, double margin) {
  adjusted_primaries result;
  triangle tri = gamut;
  if (margin > 0) {
    const auto [inner, ok] = interior_triangle(each_vertex(xy2uv_vec, gamut), margin);
    tri = each_vertex(uv2xy_vec, inner);
    result.margin_ok = ok;
  }
  chromaticity_table c = rgb2c_type(target);
  const std::array<vec2*, 3> primaries{&c.red, &c.green, &c.blue};
  for (std::size_t primary = 0; primary < 3; ++primary) {
    const segment to_white{*primaries[primary], c.white};
    for (std::size_t i = 0; i < 3; ++i) {
      const auto crossing = intersection_parameters(to_white, edge(tri, i));
      if (!crossing || !within_both(*crossing)) continue;
      *primaries[primary] = crossing->point;
      result.distances[primary] = uvdist(to_white.start, crossing->point);
      break;
    }
  }
  result.rgb = c2rgb_type(c);
  return result;
}

}  // namespace corvantile
