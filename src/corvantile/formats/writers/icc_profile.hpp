#pragma once
// ICC display profiles of version 2.4 with a matrix and curves, by Little CMS 2: with a `vcgt` tag for loaders, and
// of the display as measured. The Windows profile (mhc2) adds its own tag.
//
// ICC.1:2001-04 (version 2.4) for the tags; the tag `chad` after ICC.1:2010, annex E.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "corvantile/formats/writers/writer.hpp"
#include "corvantile/monitor/monitor.hpp"
#include "corvantile/numerics/matrix.hpp"

namespace corvantile {

/// A display as such a profile describes it. X, Y, Z in any unit, the same throughout.
struct profiled_display {
  matrix curves;         ///< n x 3, n from 2 to 4096: linear light of each channel, 0 to 1, over even drives 0..1
  mat3 colorants;        ///< column c: X, Y, Z of channel c at full drive, less the dark light
  vec3 white;            ///< X, Y, Z of full white
  double luminance = 0;  ///< of the white, in cd/m2; 0: not known
  double black_luminance = 0;  ///< in cd/m2
};

/// The display of a fitted model: its tone curves at `points` even drives, its primaries and white. Luminances stay
/// 0: only the caller knows whether the measurements were in cd/m2.
profiled_display as_measured(const monitor& mon, std::size_t points = 1024);

/// A tag as its bytes, type signature included.
struct raw_tag {
  std::uint32_t signature = 0;
  std::string bytes;
};

/// The linear Bradford adaptation of X, Y, Z from `white` to D50 (0.9642, 1, 0.8249: the illuminant of the profile
/// connection space).
mat3 bradford_to_d50(const vec3& white);

/// Class `mntr`, RGB to XYZ. Colorants are scaled channel by channel so that they sum to the white, then adapted;
/// `wtpt` is the white at Y = 1, `chad` the adaptation, `lumi` the luminance if known. The title becomes `desc`, the
/// comments follow the copyright notice in `cprt`. Refuses curves of another size, and colorants or a white that no
/// display can have; the message names `format`.
std::string icc_profile(std::string_view format, const profiled_display& display, const description& about,
                        const std::vector<raw_tag>& tags = {});

/// The length that every loader takes: some old ones pick entries instead of interpolating.
inline constexpr std::size_t usual_vcgt_entries = 256, most_vcgt_entries = 4096;

/// A profile with a `vcgt` tag, which loaders put into the graphics card: exact for gray-axis jobs, 16 bit. The table
/// is resampled to `entries`, 2 to 4096; a two-table correction is refused. `behind` is the display as the table
/// makes it: the target's curves, the corrected white and colorants. The tag replaces a calibration that was in
/// effect while measuring: compose it into the table first.
std::string icc_file(const device_tables& tables, const profiled_display& behind, const description& about,
                     std::size_t entries = usual_vcgt_entries);

/// A profile without `vcgt`, for desktops that manage colour themselves: no tables needed.
std::string monitor_icc_file(const profiled_display& display, const description& about);

}  // namespace corvantile
