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

/// One vertex per element; for a gamut red, green, blue. Either sense of rotation.
using triangle = std::array<vec2, 3>;

struct segment {
  vec2 start, end;
};

/// Distance between two x, y chromaticities in the CIE 1960 uv plane.
double uvdist(const vec2& xy1, const vec2& xy2);

/// The chromaticities of the columns of a primaries matrix, and of their sum, the white.
chromaticity_table rgb2c_type(const mat3& rgb);

/// The primaries matrix whose columns have the chromaticities of `red`, `green` and `blue` and whose sum has that of
/// `white` at Y = 1. Primaries on one line, or a y of 0, give a non-finite result.
mat3 c2rgb_type(const chromaticity_table& c);

/// The point where the lines through two segments meet: start + t (end - start), with t for the first and s for the
/// second.
struct intersection {
  double t = 0.0;
  double s = 0.0;
  vec2 point;  // computed from the first segment
};

/// std::nullopt if the segments are parallel: if the cross product of their directions, in squared units of the
/// plane, is below 100 epsilon. The bound is absolute, so segments much shorter than 1e-7 count as parallel too.
std::optional<intersection> intersection_parameters(const segment& seg1, const segment& seg2);

/// Radius of the inscribed circle, which is the margin at which the interior triangle shrinks to a point.
double inradius(const triangle& tri);

/// A triangle with its edges moved inwards. If the margin is not smaller than the inradius, or the triangle is
/// degenerate, `ok` is false and `inner` is whatever the moved lines give: no longer inside, or not finite.
struct shrunk_triangle {
  triangle inner;
  bool ok = true;
};

/// Moves the edges of `tri` inwards by `d`; d = 0 gives `tri` itself, bit for bit.
shrunk_triangle interior_triangle(const triangle& tri, double d);

/// Target primaries after clipping to a display's gamut.
struct adjusted_primaries {
  mat3 rgb;               // primaries matrix, white Y = 1
  vec3 distances;         // how far each primary moved, in uv; 0 if it was reachable
  bool margin_ok = true;  // `ok` of the shrunk gamut
};

/// Clips target primaries to the triangle `gamut` (in x, y). A primary outside it moves towards the target's white,
/// to the point where that line enters the gamut. (If the white is outside too, to the first edge that the line
/// crosses, in the order red-green, green-blue, blue-red.) A `margin` above 0 first shrinks the gamut by that much,
/// measured in uv. The white's chromaticity stays. A primary stays if its line to the white crosses no edge.
adjusted_primaries adjust_primaries(const mat3& target, const triangle& gamut, double margin = 0.0);

// ---- The single-table gray match (corvantile1.cpp) ----

/// The wanted look of the gray ramp. Positions on the ramp run from 0 (black) to 1.
struct gray_ramp_params {
  double temp = -1;    ///< colour temperature in kelvin; negative: constant chromaticity
  double wptemp = -1;  ///< temperature that the top shades towards; 0: the monitor's own; negative: no shading
  double alpha = 0.5;  ///< the monitor's dark light is blended in below this position; less than `beta`
  double beta = 0.8;   ///< the shading starts at this position; at most 1
  double hwid = 0;     ///< half-width, in CIE 1960 uv, of the swath that is searched for a brighter top
  std::optional<vec2> white = {};  ///< constant chromaticity x, y; absent: the monitor's own white
  bool restart = false;            ///< search missed levels again, see `colortemp_lut`
  gray_factors factors = {};       ///< for the wanted colours; cannot be combined with `wptemp` and `hwid`
};

/// The smooth step t^2 (3 - 2t), for t from 0 to 1.
double blend(double t);

/// The temperatures, in kelvin, that a gray match uses. None if `temp` is negative, or if `cv1` refuses `alpha` and
/// `beta`: then nothing is searched.
struct gray_temperatures {
  std::optional<double> ramp;  ///< for the whole ramp
  std::optional<double> top;   ///< what its top shades towards
};
gray_temperatures temperatures_of(const gray_ramp_params& params, const monitor& mon);

/// The wanted chromaticity of the grays. If the ramp's top is shaded, that of the top.
vec2 white_of_grays(const gray_ramp_params& params, const monitor& mon);

/// How a gray match went.
struct gray_match {
  /// 0: done. 1: `alpha` is not below `beta`. 2: `beta` exceeds 1. Other than 0, the table is unchanged.
  int status = 0;
  /// The row, counted from 0, that is 0/0 and so NaN: the one in which the shading begins, if that is the last.
  std::optional<std::size_t> undefined_row = {};
  std::optional<gray_search> ramp = {};  ///< searches for the whole ramp
  std::optional<gray_search> top = {};   ///< searches for the ramp that its top shades towards
};

/// Fills `tab` (tlen x 3, at least two rows) with the drive values of the gray ramp whose luminance follows
/// `gammalut`. `beta`, `wptemp` and `hwid` are used only if `temp` >= 0.
gray_match cv1(const monitor& mon, const gray_ramp_params& params, const lut& gammalut, matrix& tab);

// ---- The two-table solution (twolut.cpp) ----

/// What becomes of target primaries outside the display's gamut.
enum class gamut_mapping {
  compress,  ///< they move towards the white until the display can show them, and all colours move with them
  clip       ///< they stay, colours inside the gamut are right, and the linear values of others are held in 0..1
};

/// Settings of a solution, beyond monitor and target. `lut` maps drive 0..1 to luminance 0..1; if it is not valid,
/// the power law with `gamma` is used.
struct gspec {
  double boundary_tol = 0.001;  ///< shrinks the gamut triangle by this margin, in CIE 1960 uv
  double lumfrac = 0.95;        ///< share of the brightest gray's luminance that the target white gets, above 0
  double rowsum_margin = 0.05;  ///< headroom of the matrix, below 1
  double gamma = 2.2;           ///< exponent, above 0
  corvantile::lut lut;
  gamut_mapping mapping = gamut_mapping::compress;
  double minslope = 0;  ///< least slope of the curves that the post-tables invert; 0: the monitor's own
};

/// A front end in its three parts, and its effect.
struct two_table_solution {
  corvantile::matrix prelut;   ///< tlen x 3: drive to the target's linear value, all columns alike
  corvantile::matrix postlut;  ///< tlen x 3: the monitor's linear value to drive
  mat3 matrix;                 ///< between them
  monitor cmon;                ///< the monitor with this front end
  synthetic_monitor ref_smon;  ///< the requested target, at the luminance of the solution
  synthetic_monitor mod_smon;  ///< the target with its primaries moved into the monitor's gamut
  vec3 distances;              ///< how far each primary moved, in CIE 1960 uv
  ramp_top top;                ///< the brightest gray with the target's white
  int status = 1;              ///< 1: success (unlike elsewhere); 0: a negative entry in the matrix of `compress`
};

/// Solves for the front end that makes `mon` show the primaries and white of `target`. With `gamut_mapping::compress`
/// the primaries are moved into its gamut; with `clip` they stay as they are, nothing is moved, both targets are one,
/// and `cmon` clips. The target's white gets `lumfrac` of the luminance of the brightest such gray, or less if the
/// matrix's largest row sum would otherwise exceed 1 - `rowsum_margin`. `tlen` is at least 2.
two_table_solution twolutsolution(const monitor& mon, const chromaticity_table& target, const gspec& spec,
                                  std::size_t tlen);

// ---- Held ready: no job calls these ----

/// x and y of each row X, Y, Z: n x 3 to n x 2. A zero sum gives NaN or infinity.
matrix chromaticities(const matrix& xyz);

/// Whether the segments have a point in common, end points included. False for parallel segments, even if they
/// overlap.
bool segs_intersect(const segment& seg1, const segment& seg2);

/// `rgb2c_type` for a 3 x 3 matrix. The result is 4 x 2, with rows red, green, blue, white.
matrix rgb2c_mat(const matrix& rgb);

/// `c2rgb_type` for such a 4 x 2 matrix. The result is 3 x 3.
matrix c2rgb_mat(const matrix& c);

}  // namespace corvantile
