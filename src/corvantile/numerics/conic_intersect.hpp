#pragma once
// A common point of two conics in the unit square.

#include <array>
#include <cmath>
#include <numbers>
#include <span>

#include "corvantile/numerics/matrix.hpp"
#include "corvantile/numerics/neldmead.hpp"

namespace corvantile {

// Searches over values in [0, 1] need no bounds where an angle stands for each value.

/// The value that an angle, any angle, stands for.
inline double square_of_sine(double angle) {
  const double s = std::sin(angle);
  return s * s;
}
/// The angle in [0, pi/2] that stands for `value`: pi/2 for 1 and more, `otherwise` where it is negative or no
/// number.
inline double angle_of(double value, double otherwise) {
  if (value >= 0 && value < 1) return std::asin(std::sqrt(value));
  return value >= 1 ? std::numbers::pi / 2 : otherwise;
}

// ---- Held ready: no job calls these ----

/// The conic a u^2 + b u v + c v^2 + d u + e v + f, as (a, b, c, d, e, f).
using conic = std::array<double, 6>;

inline double eval(const conic& q, double u, double v) {
  return q[0] * (u * u) + q[1] * u * v + q[2] * (v * v) + q[3] * u + q[4] * v + q[5];
}

/// Q1(u, v)^2 + Q2(u, v)^2 with u, v the squared sines of the two angles.
struct conerr {
  const conic& con1;
  const conic& con2;

  double operator()(std::span<const double> theta) const {
    const double u = square_of_sine(theta[0]);
    const double v = square_of_sine(theta[1]);
    const double q1 = eval(con1, u, v);
    const double q2 = eval(con2, u, v);
    return q1 * q1 + q2 * q2;
  }
};

/// The point (u, v) of the unit square, found downhill from `mu0`, where Q1^2 + Q2^2 is least: an intersection of the
/// two conics where they meet there, else the (locally) nearest miss, without a report. Starting values outside [0,
/// 1] (or not a number) start at the nearer bound (0).
inline vec2 cmus(const conic& con1, const conic& con2, const vec2& mu0) {
  const auto best = neldermead(conerr{con1, con2}, std::array{angle_of(mu0[0], 0.0), angle_of(mu0[1], 0.0)},
                               {.scale = 0.05, .tol = 1e-12, .maxit = 10000});
  return {{square_of_sine(best.xmin[0]), square_of_sine(best.xmin[1])}};
}

}  // namespace corvantile
