#pragma once
// Perceived colour difference: CIE 1976 L*a*b* and CIEDE2000.
//
// Batches hold one colour per row and give the bits of the single form.

#include <vector>

#include "corvantile/numerics/matrix.hpp"

namespace corvantile {

/// L*, a*, b* of a colour relative to the reference white `white`; both are X, Y, Z in the same unit. Uses the
/// rounded constants of the 1976 definition (see `cuberoot`). CIE 15.2 (1986).
vec3 xyz2lab_vec(const vec3& xyz, const vec3& white);
matrix xyz2lab_mat(const matrix& xyz, const vec3& white);

/// The companding function of L*a*b*: the cube root of t above 0.008856, a straight line below.
double cuberoot(double t);

/// CIEDE2000 difference of two L*a*b* colours; `k` holds the parametric factors kL, kC, kH. Symmetric up to rounding.
/// Sharma, Wu and Dalal, Color Research and Application 30 (2005), 21-30.
double deltae2000_vec(const vec3& lab1, const vec3& lab2, const vec3& k = {{1, 1, 1}});

/// Row by row. Both batches have the same number of rows.
std::vector<double> deltae2000_mat(const matrix& lab1, const matrix& lab2, const vec3& k = {{1, 1, 1}});

}  // namespace corvantile
