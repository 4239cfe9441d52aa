#pragma once
// Whites and primaries as their standards print them, in CIE 1931 x, y.

#include "corvantile/colour/chromaticity.hpp"

namespace corvantile {

inline constexpr vec2 d65{{0.3127, 0.3290}};  ///< as ITU-R BT.709 and IEC 61966-2-1 round it
inline constexpr vec2 d50{{0.3457, 0.3585}};  ///< as ISO 3664 rounds it

/// IEC 61966-2-1; the primaries are also those of ITU-R BT.709.
inline constexpr chromaticity_table srgb{
    .red = {{0.64, 0.33}}, .green = {{0.30, 0.60}}, .blue = {{0.15, 0.06}}, .white = d65};
/// SMPTE EG 432-1.
inline constexpr chromaticity_table display_p3{
    .red = {{0.68, 0.32}}, .green = {{0.265, 0.69}}, .blue = {{0.15, 0.06}}, .white = d65};
/// Adobe RGB (1998) Color Image Encoding, 2005.
inline constexpr chromaticity_table adobe_rgb{
    .red = {{0.64, 0.33}}, .green = {{0.21, 0.71}}, .blue = {{0.15, 0.06}}, .white = d65};
/// ITU-R BT.2020-2.
inline constexpr chromaticity_table bt2020{
    .red = {{0.708, 0.292}}, .green = {{0.170, 0.797}}, .blue = {{0.131, 0.046}}, .white = d65};

}  // namespace corvantile
