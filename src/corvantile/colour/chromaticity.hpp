#pragma once
// Chromaticity coordinates, the colour of a black body, and correlated colour temperature.
//
// xy is always CIE 1931. uv is always the CIE 1960 UCS; the 1976 coordinates are called u'v'. XYZ carries luminance
// in Y. Batches hold one sample per row and give the bits of the single form.

#include <array>
#include <optional>

#include "corvantile/numerics/matrix.hpp"

namespace corvantile {

/// The chromaticities x, y (CIE 1931) of a display's primaries and white. They have names because orders differ:
/// settings begin with the white, solvers end with it.
struct chromaticity_table {
  vec2 red, green, blue, white;
  friend bool operator==(const chromaticity_table&, const chromaticity_table&) = default;
};

/// u = 4x / (12y - 2x + 3), v = 6y / (12y - 2x + 3).
vec2 xy2uv_vec(const vec2& xy);

/// The inverse of `xy2uv_vec`: x = 3u / (2u - 8v + 4), y = 2v / (2u - 8v + 4).
vec2 uv2xy_vec(const vec2& uv);

/// CIE 1976 u' = u and v' = 1.5 v.
vec2 xy2uv1976(const vec2& xy);

/// Tristimulus values of chromaticity `xy` at luminance `Y`. y = 0 gives a non-finite result.
vec3 xy2xyz(const vec2& xy, double Y = 1.0);

/// x = X / (X + Y + Z), y = Y / (X + Y + Z). A zero sum gives NaN or infinity.
inline vec2 chromaticity(const vec3& xyz) {
  const double s = xyz[0] + xyz[1] + xyz[2];
  return {{xyz[0] / s, xyz[1] / s}};
}

/// The same; std::nullopt if the sum is zero.
std::optional<vec2> xyz2xy(const vec3& xyz);

/// The wavelengths of the colour-matching table, in nm: 380, 385, ..., 780.
inline constexpr int wxyz_first_nm = 380;
inline constexpr int wxyz_step_nm = 5;
inline constexpr std::size_t wxyz_rows = 81;

/// Colour-matching functions (x-bar, y-bar, z-bar) of the CIE 1931 2-degree standard observer, to four decimals.
/// CIE 15.2 (1986), table 2.1.
extern const std::array<vec3, wxyz_rows> wxyz;

/// Tristimulus values, scaled to Y = 1, of a black body at `T` kelvin: Planck's law summed over `wxyz`, a plain sum
/// without step width or end weights. Not finite below about 30 K, because the exitances underflow.
vec3 blkbod(double T);

/// `blkbod` with each component divided by the middle one.
vec3 blackbody_color(double T);

/// Correlated colour temperature, in kelvin, of a chromaticity x, y or of a colour X, Y, Z. Uses the formula's first
/// range only: meant for 3 000 to 50 000 K, applied everywhere. A zero sum X + Y + Z, or y = 0.1735, gives a
/// meaningless or non-finite result; nothing is reported.
/// After Hernandez-Andres, Lee and Romero, Applied Optics 38 (1999).
double xyz2cct(const vec2& xy);
inline double xyz2cct(const vec3& xyz) { return xyz2cct(chromaticity(xyz)); }

/// A segment of an iso-temperature line: the chromaticities p + t ray for t in [tmin, tmax].
struct locus_swath {
  vec2 p;             // xy of the black body
  vec2 ray;           // unit vector in xy, from p towards the formula's epicentre
  double tmin = 0.0;  // signed xy distance along `ray` of the lower end (negative)
  double tmax = 0.0;  // the same for the upper end (positive)

  vec2 at(double t) const { return p + t * ray; }
};

/// The iso-temperature line (as `xyz2cct` defines it) through the black body at `T` kelvin, up to a uv distance of
/// `w` on either side of the locus.
locus_swath cct_segment(double T, double w);

// ---- Held ready: no job calls these ----

/// `xy2uv_vec` and `uv2xy_vec` for each row of an n x 2 matrix.
matrix xy2uv_mat(const matrix& xy);
matrix uv2xy_mat(const matrix& uv);

}  // namespace corvantile
