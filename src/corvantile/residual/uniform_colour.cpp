#include "corvantile/residual/uniform_colour.hpp"

#include <algorithm>
#include <cmath>

namespace corvantile {
namespace {

constexpr double epsilon = 216.0 / 24389.0;  // (6/29)^3
constexpr double kappa = 24389.0 / 27.0;     // (29/3)^3
constexpr double knee = 6.0 / 29.0;          // the cube root of epsilon

// The inverse of `lab_compand`.
value_and_slope lab_expand(double f) {
  if (f > knee) return {f * f * f, 3 * f * f};
  return {(116 * f - 16) / kappa, 116 / kappa};
}

// Of X, Y and Z, each over that of the white.
std::array<value_and_slope, 3> expanded(const vec3& lab) {
  const double fy = (lab[0] + 16) / 116;
  return {lab_expand(fy + lab[1] / 500), lab_expand(fy), lab_expand(fy - lab[2] / 200)};
}

constexpr mat3 lms2lab{{vec3{{0.2104542553, 1.9779984951, 0.0259040371}},
                        vec3{{0.7936177850, -2.4285922050, 0.7827717662}},
                        vec3{{-0.0040720468, 0.4505937099, -0.8086757660}}}};

}  // namespace

value_and_slope lab_compand(double t) {
  if (!(t > epsilon)) return {(kappa * t + 16) / 116, kappa / 116};
  const double f = std::cbrt(t);
  return {f, 1 / (3 * f * f)};
}

vec3 xyz2lab_exact(const vec3& xyz, const vec3& white) {
  vec3 f;
  for (std::size_t k = 0; k < 3; ++k) f[k] = lab_compand(xyz[k] / white[k]).value;
  return {{116 * f[1] - 16, 500 * (f[0] - f[1]), 200 * (f[1] - f[2])}};
}

vec3 lab2xyz_exact(const vec3& lab, const vec3& white) {
  const auto t = expanded(lab);
  return {{t[0].value * white[0], t[1].value * white[1], t[2].value * white[2]}};
}

mat3 lab2xyz_slopes(const vec3& lab, const vec3& white) {
  const auto t = expanded(lab);
  mat3 m;
  for (std::size_t k = 0; k < 3; ++k) m(k, 0) = t[k].slope * white[k] / 116;
  m(0, 1) = t[0].slope * white[0] / 500;
  m(2, 2) = -t[2].slope * white[2] / 200;
  return m;
}

oklab_space published_oklab() {
  return {{{vec3{{0.8189330101, 0.0329845436, 0.0482003018}}, vec3{{0.3618667424, 0.9293118715, 0.2643662691}},
            vec3{{-0.1288597137, 0.0361456387, 0.6338517070}}}}};
}

oklab_space adapted_oklab(const vec3& white) {
  oklab_space space = published_oklab();
  const vec3 response = space.xyz2lms * white;
  for (vec3& column : space.xyz2lms.col) column = elementwise_quotient(column, response);
  return space;
}

vec3 xyz2oklab(const oklab_space& space, const vec3& xyz) {
  const vec3 lms = space.xyz2lms * xyz;
  return lms2lab * vec3{{std::cbrt(lms[0]), std::cbrt(lms[1]), std::cbrt(lms[2])}};
}

vec3 xyz2oklab(const oklab_space& space, const vec3& xyz, mat3& slopes) {
  const vec3 lms = space.xyz2lms * xyz;
  vec3 root;
  mat3 d;  // of the roots
  for (std::size_t k = 0; k < 3; ++k) {
    root[k] = std::cbrt(lms[k]);
    const double slope = 1 / (3 * std::max(root[k] * root[k], 1e-4));
    for (std::size_t c = 0; c < 3; ++c) d(k, c) = slope * space.xyz2lms(k, c);
  }
  slopes = lms2lab * d;
  return lms2lab * root;
}

}  // namespace corvantile
