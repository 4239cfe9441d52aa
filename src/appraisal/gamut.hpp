#pragma once
// Gamuts as triangles in the CIE 1976 u'v' diagram.

#include <array>
#include <string_view>
#include <vector>

#include "numerics/matrix.hpp"

namespace corvantile {

/// u' = 4x / (12y - 2x + 3), v' = 9y / (12y - 2x + 3): CIE 1976 uniform chromaticity. CIE 15.2 (1986).
vec2 uv1976(const vec2& xy);

/// Distance of two chromaticities x, y in u'v'.
double uv1976_distance(const vec2& xy_a, const vec2& xy_b);

using primaries_xy = std::array<vec2, 3>;  ///< x, y of red, green, blue

struct standard_gamut {
  std::string_view name;
  primaries_xy primaries;
};

/// sRGB (IEC 61966-2-1), Display P3 (SMPTE EG 432-1 primaries), Adobe RGB (1998), BT.2020 (ITU-R BT.2020-2).
extern const std::array<standard_gamut, 4> standard_gamuts;

/// The gamut of one display beside one of these.
struct gamut_comparison {
  std::string_view name;
  double area = 0;      ///< of the display's triangle over that of the standard
  double coverage = 0;  ///< share of the standard's triangle that lies within the display's, 0..1
};

/// Area of a convex polygon of chromaticities in u'v'; corners in either sense of rotation.
double polygon_area(const std::vector<vec2>& corners);

/// The part of the convex polygon `subject` that lies in the triangle `window`, by clipping at each of its sides.
/// Empty where they do not meet. Sutherland and Hodgman, Communications of the ACM 17 (1974).
std::vector<vec2> clipped(std::vector<vec2> subject, const std::array<vec2, 3>& window);

std::array<gamut_comparison, 4> compare_gamut(const primaries_xy& display);

}  // namespace corvantile
