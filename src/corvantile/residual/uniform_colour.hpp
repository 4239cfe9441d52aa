#pragma once
// Two uniform colour spaces with exact inverses: L*a*b* for the model, Oklab for colours that a display cannot show.

#include "corvantile/numerics/matrix.hpp"

namespace corvantile {

/// A value and its slope.
struct value_and_slope {
  double value = 0;
  double slope = 0;
};

/// The companding function of L*a*b* with the exact constants of CIE 15 (2004): the cube root of `t` above 216/24389,
/// below it a straight line that goes on below 0, so that every colour has its L*a*b* and the way back is exact.
value_and_slope lab_compand(double t);

/// L*a*b* against the reference white `white`, both as X, Y, Z in one unit. Differs from `xyz2lab_vec`, which has the
/// rounded constants of 1976, by less than 0.002.
vec3 xyz2lab_exact(const vec3& xyz, const vec3& white);

/// The inverse of `xyz2lab_exact`.
vec3 lab2xyz_exact(const vec3& lab, const vec3& white);

/// Column c is the change of X, Y, Z with component c of L*a*b*.
mat3 lab2xyz_slopes(const vec3& lab, const vec3& white);

/// Oklab. Björn Ottosson, "A perceptual color space for image processing" (2020), with the constants printed there.
struct oklab_space {
  mat3 xyz2lms;  ///< the published matrix; as `adapted_oklab` gives it, each row over the white's value
};

/// Oklab for colours with X, Y, Z relative to a D65 white of Y = 1, as published.
oklab_space published_oklab();

/// Oklab seen against `white` (X, Y, Z): this white, in the unit of the colours, becomes L = 1, a = b = 0.
oklab_space adapted_oklab(const vec3& white);

/// L, a, b. The cube root of a negative response is negative.
vec3 xyz2oklab(const oklab_space& space, const vec3& xyz);

/// The same, and in `slopes` column c the change of L, a, b with component c of `xyz`. The slopes are finite
/// everywhere: below 1e-6 of the white's response they are those at 1e-6.
vec3 xyz2oklab(const oklab_space& space, const vec3& xyz, mat3& slopes);

}  // namespace corvantile
