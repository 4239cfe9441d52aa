#pragma once
// The matching algorithms: which target colours a display can reach, and the tables that make it show them.

#include <array>
#include <optional>

#include "numerics/matrix.hpp"

namespace corvantile {

// ---- Plane geometry of primaries (gamut_geometry.cpp) ----

/// Chromaticities x, y (CIE 1931) in the order red, green, blue, white.
using chromaticity_table = std::array<vec2, 4>;

/// One vertex per element; of a gamut: red, green, blue. Either sense of rotation.
using triangle = std::array<vec2, 3>;

struct segment {
  vec2 start, end;
};

/// x and y of each row X, Y, Z: n x 3 to n x 2. A zero sum gives NaN or infinity.
matrix chromaticities(const matrix& xyz);

/// Distance of two x, y chromaticities in the CIE 1960 uv plane.
double uvdist(const vec2& xy1, const vec2& xy2);

/// Chromaticities of the columns of a primaries matrix, then of their sum, the white. `_mat`: 3 x 3 to 4 x 2.
chromaticity_table rgb2c_type(const mat3& rgb);
matrix rgb2c_mat(const matrix& rgb);

/// The primaries matrix whose columns have the chromaticities of rows red, green, blue and whose sum has that of row
/// white at Y = 1. Primaries on one line, or a y of 0, give a non-finite result. `_mat`: 4 x 2 to 3 x 3.
mat3 c2rgb_type(const chromaticity_table& c);
matrix c2rgb_mat(const matrix& c);

/// Where the lines through two segments meet: start + t (end - start), with t of the first and s of the second.
struct intersection {
  double t = 0.0;
  double s = 0.0;
  vec2 point;  // computed from the first segment
};

/// Nothing when the segments are parallel: when the cross product of their directions, in units of the plane squared,
/// is below 100 epsilon. The bound is absolute, so segments much shorter than 1e-7 count as parallel too.
std::optional<intersection> intersection_parameters(const segment& seg1, const segment& seg2);

/// Whether the segments have a point in common, end points included; false for parallel segments, even overlapping.
bool segs_intersect(const segment& seg1, const segment& seg2);

/// Radius of the inscribed circle: the margin at which the interior triangle shrinks to a point.
double inradius(const triangle& tri);

/// A triangle with its edges moved inwards. Where the margin is not smaller than the inradius, or the triangle is
/// degenerate, `ok` is false and `inner` is what the moved lines give all the same: no longer inside, or not finite.
struct shrunk_triangle {
  triangle inner;
  bool ok = true;
};

/// Moves the edges of `tri` inwards by `d`; d = 0 gives `tri` itself, bit for bit.
shrunk_triangle interior_triangle(const triangle& tri, double d);

/// Target primaries after clipping to a display's gamut.
struct adjusted_primaries {
  mat3 rgb;               // primaries matrix, white Y = 1
  vec3 distances;         // how far each primary moved, in uv; 0 where it was reachable
  bool margin_ok = true;  // as `ok` of the shrunk gamut
};

/// Moves each primary of `target` that lies outside the triangle `gamut` (in x, y) to where the line towards the
/// target's white enters it. A `margin` above 0 first shrinks the gamut by that much, measured in uv. The white's
/// chromaticity stays; a primary whose line to the white crosses no edge stays where it is.
adjusted_primaries adjust_primaries(const mat3& target, const triangle& gamut, double margin = 0.0);

}  // namespace corvantile
