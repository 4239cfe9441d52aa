#pragma once
// A common point of two conics in the unit square.

#include <array>
#include <cmath>
#include <numbers>
#include <span>

#include "corvantile/numerics/matrix.hpp"
#include "corvantile/numerics/neldmead.hpp"

namespace corvantile {

// A search over values in [0, 1] needs no bounds if it varies angles and takes their squared sines.

/// The value that stands behind `angle`: in [0, 1] for any angle.
inline double square_of_sine(double angle) {
  const double s = std::sin(angle);
  return s * s;
}
/// The angle in [0, pi/2] whose squared sine is `value`: pi/2 if the value is 1 or more, `otherwise` if it is
/// negative or NaN.
inline double angle_of(double value, double otherwise) {
  if (value >= 0 && value < 1) return std::asin(std::sqrt(value));
  return value >= 1 ? std::numbers::pi / 2 : otherwise;
}

// ---- Held ready: no job calls these ----

/// The conic a u^2 + b u v + c v^2 + d u + e v + f, stored as (a, b, c, d, e, f).
using conic = std::array<double, 6>;

inline double eval(const conic& q, double u, double v) {
  return q[0] * (u * u) + q[1] * u * v + q[2] * (v * v) + q[3] * u + q[4] * v + q[5];
}

/// Q1(u, v)^2 + Q2(u, v)^2, with u and v the squared sines of the two angles.
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

/// Searches the unit square downhill from `mu0` for the point (u, v) with the least Q1^2 + Q2^2. If the conics meet
/// in the square, that is an intersection; otherwise it is the nearest miss, at least locally, and nothing is
/// reported. A starting value outside [0, 1] starts at the nearer bound, NaN at 0.
inline vec2 cmus(const conic& con1, const conic& con2, const vec2& mu0) {
  const auto best = neldermead(conerr{con1, con2}, std::array{angle_of(mu0[0], 0.0), angle_of(mu0[1], 0.0)},
                               {.scale = 0.05, .tol = 1e-12, .maxit = 10000});
  return {{square_of_sine(best.xmin[0]), square_of_sine(best.xmin[1])}};
}

}  // namespace corvantile
