#pragma once
// Gamuts as triangles in the CIE 1976 u'v' diagram.

#include <array>
#include <string_view>
#include <vector>

#include "corvantile/colour/standards.hpp"

namespace corvantile {

/// The distance of two chromaticities x, y in u'v'.
double uv1976_distance(const vec2& xy_a, const vec2& xy_b);

struct standard_gamut {
  std::string_view name;
  chromaticity_table xy;
};

inline constexpr std::array<standard_gamut, 4> standard_gamuts{
    {{"sRGB", srgb}, {"Display P3", display_p3}, {"Adobe RGB", adobe_rgb}, {"BT.2020", bt2020}}};

/// Red, green and blue in u'v'.
std::array<vec2, 3> primaries_in_uv1976(const chromaticity_table& xy);

/// The gamut of a display compared with one of the standards.
struct gamut_comparison {
  std::string_view name;
  double area = 0;      ///< of the display's triangle over that of the standard
  double coverage = 0;  ///< share of the standard's triangle that is inside the display's, 0..1
};

/// Area of a convex polygon. Its corners may go round either way, here and below.
double polygon_area(const std::vector<vec2>& corners);

/// The part of the convex polygon `subject` inside the triangle `window`; empty if they do not meet.
/// Sutherland and Hodgman, Communications of the ACM 17 (1974).
std::vector<vec2> clipped(std::vector<vec2> subject, const std::array<vec2, 3>& window);

/// The share, 0 to 1, of the area of triangle `wanted` that is inside triangle `display`. NaN if `wanted` has no area
/// or a corner is not finite.
double coverage(const std::array<vec2, 3>& display, const std::array<vec2, 3>& wanted);

/// Compares the primaries of `display` with each standard. Its white does not matter.
std::array<gamut_comparison, 4> compare_gamut(const chromaticity_table& display);

}  // namespace corvantile
