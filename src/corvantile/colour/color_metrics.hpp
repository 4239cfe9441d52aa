#pragma once
// Perceived colour difference: CIE 1976 L*a*b* and CIEDE2000.
//
// Batches hold one colour per row and agree with the single form bit for bit.

#include <vector>

#include "corvantile/numerics/matrix.hpp"

namespace corvantile {

/// L*, a*, b* of a colour seen against the reference white `white`, both as X, Y, Z in one unit.
/// With the rounded constants of the 1976 definition, see `cuberoot`. CIE 15.2 (1986).
vec3 xyz2lab_vec(const vec3& xyz, const vec3& white);
matrix xyz2lab_mat(const matrix& xyz, const vec3& white);

/// The companding function of L*a*b*: the cube root of t above 0.008856, a straight line up to there.
double cuberoot(double t);

/// CIEDE2000 difference of two L*a*b* colours; `k` holds the parametric factors kL, kC, kH. Symmetric up to rounding.
/// Sharma, Wu and Dalal, Color Research and Application 30 (2005), 21-30.
double deltae2000_vec(const vec3& lab1, const vec3& lab2, const vec3& k = {{1, 1, 1}});

/// Row by row; the two batches have as many rows as each other.
std::vector<double> deltae2000_mat(const matrix& lab1, const matrix& lab2, const vec3& k = {{1, 1, 1}});

}  // namespace corvantile
