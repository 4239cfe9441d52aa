#pragma once
// The matching algorithms: which target colours a display can reach, and the tables that make it show them.

#include <array>
#include <cstddef>
#include <optional>

#include "corvantile/colour/chromaticity.hpp"
#include "corvantile/colour/gray_factors.hpp"
#include "corvantile/colour/gray_search.hpp"
#include "corvantile/monitor/monitor.hpp"
#include "corvantile/monitor/synthetic_monitor.hpp"
#include "corvantile/numerics/matrix.hpp"
#include "corvantile/utils/lut.hpp"

namespace corvantile {

// ---- Plane geometry of primaries (gamut_geometry.cpp) ----

/// One vertex per element; of a gamut: red, green, blue. Either sense of rotation.
using triangle = std::array<vec2, 3>;

struct segment {
  vec2 start, end;
};

/// Distance of two x, y chromaticities in the CIE 1960 uv plane.
double uvdist(const vec2& xy1, const vec2& xy2);

/// Chromaticities of the columns of a primaries matrix, then of their sum, the white.
chromaticity_table rgb2c_type(const mat3& rgb);

/// The primaries matrix whose columns have the chromaticities of rows red, green, blue and whose sum has that of row
/// white at Y = 1. Primaries on one line, or a y of 0, give a non-finite result.
mat3 c2rgb_type(const chromaticity_table& c);

/// Where the lines through two segments meet: start + t (end - start), with t of the first and s of the second.
struct intersection {
  double t = 0.0;
  double s = 0.0;
  vec2 point;  // computed from the first segment
};

/// Nothing when the segments are parallel: when the cross product of their directions, in units of the plane squared,
/// is below 100 epsilon. The bound is absolute, so segments much shorter than 1e-7 count as parallel too.
std::optional<intersection> intersection_parameters(const segment& seg1, const segment& seg2);

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
/// target's white enters it (with the white outside, too: to the first edge that the line crosses, in the order
/// red-green, green-blue, blue-red). A `margin` above 0 first shrinks the gamut by that much, measured in uv. The
/// white's chromaticity stays; a primary whose line to the white crosses no edge stays where it is.
adjusted_primaries adjust_primaries(const mat3& target, const triangle& gamut, double margin = 0.0);

// ---- The single-table gray match (corvantile1.cpp) ----

/// What the gray ramp is to look like. Positions on the ramp run from 0 (black) to 1.
struct gray_ramp_params {
  double temp = -1;    ///< colour temperature in kelvin; negative: a constant chromaticity
  double wptemp = -1;  ///< temperature towards which the top shades; 0: the monitor's own; negative: no shading
  double alpha = 0.5;  ///< position below which the monitor's dark light is blended in; below `beta`
  double beta = 0.8;   ///< position where the shading starts, at most 1
  double hwid = 0;     ///< half-width, in CIE 1960 uv, of the swath searched for a brighter top
  std::optional<vec2> white = {};  ///< the constant chromaticity, x and y; absent: the monitor's own white
  bool restart = false;            ///< search levels that were not found a second time, see `colortemp_lut`
  gray_factors factors = {};       ///< of the wanted colours; they go without `wptemp` and `hwid`
};

/// The smooth step t^2 (3 - 2t), for t from 0 to 1.
double blend(double t);

/// The temperatures, in kelvin, that a gray match looks at. None with a negative `temp`, nor with `alpha` and `beta`
/// out of order, for then nothing is searched.
struct gray_temperatures {
  std::optional<double> ramp;  ///< of the whole ramp
  std::optional<double> top;   ///< towards which its top shades
};
gray_temperatures temperatures_of(const gray_ramp_params& params, const monitor& mon);

/// The chromaticity that grays are to have, those at the ramp's top where it is shaded.
vec2 white_of_grays(const gray_ramp_params& params, const monitor& mon);

/// How a gray match went.
struct gray_match {
  /// 0 done; 1 `alpha` is not below `beta`; 2 `beta` exceeds 1. Other than 0, the table was left as it was.
  int status = 0;
  /// The one row, counted from 0, that is 0/0 and so not a number: the shading begins in the last row.
  std::optional<std::size_t> undefined_row = {};
  std::optional<gray_search> ramp = {};  ///< the searches for the whole ramp
  std::optional<gray_search> top = {};   ///< and for the ramp towards which its top shades
};

/// Fills `tab` (tlen x 3, at least two rows) with the drive values of the gray ramp whose luminance follows
/// `gammalut`. With `temp` >= 0, and only then, `alpha`, `beta`, `wptemp` and `hwid` are looked at.
gray_match cv1(const monitor& mon, const gray_ramp_params& params, const lut& gammalut, matrix& tab);

// ---- The two-table solution (twolut.cpp) ----

/// What the solutions are told besides monitor and target. `lut` maps drive 0..1 to luminance 0..1; while it is not
/// valid, the power law with `gamma` stands in for it.
struct gspec {
  double boundary_tol = 0.001;  ///< margin by which the gamut triangle is shrunk, in CIE 1960 uv
  double lumfrac = 0.95;        ///< target white luminance as a fraction of the brightest such gray's, above 0
  double rowsum_margin = 0.05;  ///< head-room of the matrix, below 1
  double gamma = 2.2;           ///< exponent, above 0
  corvantile::lut lut;
  double minslope = 0;  ///< least slope of the curves that the post-tables invert; 0: the monitor's own curves
};

/// A front end in its three parts, and what it amounts to.
struct two_table_solution {
  corvantile::matrix prelut;   ///< tlen x 3: drive to the target's linear value, all columns alike
  corvantile::matrix postlut;  ///< tlen x 3: the monitor's linear value to drive
  mat3 matrix;                 ///< between them
  monitor cmon;                ///< the monitor with this front end
  synthetic_monitor ref_smon;  ///< the target as asked for, at the luminance of the solution
  synthetic_monitor mod_smon;  ///< the target as clipped to the monitor's gamut
  vec3 distances;              ///< how far each primary was moved, in CIE 1960 uv
  ramp_top top;                ///< the brightest gray of the target's white
  int status = 1;              ///< 1 for success, other than elsewhere; 0 when the matrix has a negative entry
};

/// Solves for the front end that makes `mon` show the primaries and white `target`, clipped to its gamut. The
/// target's white gets `lumfrac` of the luminance of the brightest such gray, less where the matrix's largest row sum
/// would exceed 1 - `rowsum_margin`. `tlen` is at least 2.
two_table_solution twolutsolution(const monitor& mon, const chromaticity_table& target, const gspec& spec,
                                  std::size_t tlen);

// ---- Held ready: no job calls these ----

/// x and y of each row X, Y, Z: n x 3 to n x 2. A zero sum gives NaN or infinity.
matrix chromaticities(const matrix& xyz);

/// Whether the segments have a point in common, end points included; false for parallel segments, even overlapping.
bool segs_intersect(const segment& seg1, const segment& seg2);

/// `rgb2c_type` for a 3 x 3 matrix, giving 4 x 2: rows red, green, blue, white.
matrix rgb2c_mat(const matrix& rgb);

/// `c2rgb_type` for such a 4 x 2 matrix, giving 3 x 3.
matrix c2rgb_mat(const matrix& c);

}  // namespace corvantile
