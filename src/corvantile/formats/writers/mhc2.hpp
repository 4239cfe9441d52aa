#pragma once
// The Windows colour pipeline: an ICC profile with the tag `MHC2`, a matrix followed by one table per channel.
// Exact only if the pre-table is the sRGB curve, which is built into that pipeline.
//
// Pipeline: sRGB decode, RGB to XYZ, M, XYZ to RGB, sRGB encode, table. After "Windows hardware display color
// calibration pipeline" (Microsoft, win32 documentation); the sRGB curve after IEC 61966-2-1.

#include <cstddef>
#include <string>

#include "corvantile/formats/writers/icc_profile.hpp"
#include "corvantile/formats/writers/writer.hpp"

namespace corvantile {

/// Drive value to linear light.
double srgb_decode(double v);
/// Linear light to drive value.
double srgb_encode(double l);

/// The largest distance of the pre-table from the sRGB curve, as drive values in codes of 255.
double distance_from_srgb(const matrix& pre);

/// Beyond this distance, in codes of 255, the Windows pipeline shows other colours than the correction.
inline constexpr double srgb_tolerance = 3;

/// M = S K S^-1 with S the matrix of sRGB; table_c(v) = post_c(decode(v)) at `entries` points, 2 to 4096. `behind` is
/// the display as the correction makes it. If its luminance is not known, the tag says 80 cd/m2, that of sRGB.
/// Refuses one-table corrections and pre-tables farther than `srgb_tolerance` from the sRGB curve.
std::string mhc2_file(const device_tables& tables, const profiled_display& behind, const description& about,
                      std::size_t entries = 1024);

}  // namespace corvantile
