#pragma once
// Gamuts as triangles in the CIE 1976 u'v' diagram.

#include <array>
#include <string_view>
#include <vector>

#include "corvantile/colour/standards.hpp"

namespace corvantile {

/// Distance of two chromaticities x, y in u'v'.
double uv1976_distance(const vec2& xy_a, const vec2& xy_b);

struct standard_gamut {
  std::string_view name;
  chromaticity_table xy;
};

inline constexpr std::array<standard_gamut, 4> standard_gamuts{
    {{"sRGB", srgb}, {"Display P3", display_p3}, {"Adobe RGB", adobe_rgb}, {"BT.2020", bt2020}}};

/// The primaries in u'v', red first.
std::array<vec2, 3> primaries_in_uv1976(const chromaticity_table& xy);

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

/// The share, 0 to 1, of the area of triangle `wanted` that lies within triangle `display`; either sense of rotation.
/// Not a number where `wanted` has no area or a corner is not finite.
double coverage(const std::array<vec2, 3>& display, const std::array<vec2, 3>& wanted);

/// The white of `display` does not matter.
std::array<gamut_comparison, 4> compare_gamut(const chromaticity_table& display);

}  // namespace corvantile
