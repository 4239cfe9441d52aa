#pragma once
// ICC display profiles of version 2.4 with a matrix and curves, by Little CMS 2. What the profile kinds of this
// folder (icc, monitor-icc, mhc2) have in common.
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

/// A display in the terms of such a profile. X, Y, Z in any unit, the same throughout.
struct profiled_display {
  matrix curves;         ///< n x 3, n from 2 to 4096: linear light of each channel, 0 to 1, over even drives 0..1
  mat3 colorants;        ///< column c: X, Y, Z of channel c at full drive, dark light taken off
  vec3 white;            ///< X, Y, Z of full white
  double luminance = 0;  ///< of the white, in cd/m2; 0: not known
  double black_luminance = 0;  ///< in cd/m2
};

/// A tag whose bytes are given, type signature included.
struct raw_tag {
  std::uint32_t signature = 0;
  std::string bytes;
};

/// The linear Bradford adaptation of X, Y, Z from `white` to D50 (the illuminant of the connection space; its
/// components 0.9642, 1, 0.8249).
mat3 bradford_to_d50(const vec3& white);

/// Class `mntr`, RGB to XYZ. Colorants are scaled channel by channel so that they sum to the white, then adapted;
/// `wtpt` is the white at Y = 1, `chad` the adaptation, `lumi` the luminance if known. The title becomes `desc`, the
/// comments follow the copyright notice in `cprt`. Refuses, in the name of `format`, curves of another size and
/// colorants or a white that are no colours of a display.
std::string icc_profile(std::string_view format, const profiled_display& display, const description& about,
                        const std::vector<raw_tag>& tags = {});

/// The length that every loader takes: some old ones pick entries instead of interpolating.
inline constexpr std::size_t usual_vcgt_entries = 256, most_vcgt_entries = 4096;

/// `behind` is the display behind the table: its curves are the target's, its white and colorants the corrected ones.
/// The table is resampled to `entries`, 2 to 4096. A two-table correction is refused. The tag replaces a calibration
/// that was in effect while measuring: compose it into the table before.
std::string icc_file(const device_tables& tables, const profiled_display& behind, const description& about,
                     std::size_t entries = usual_vcgt_entries);

/// The display of a fitted model: its tone curves at `points` even drives, its primaries and white. Luminances are
/// left out: only the caller knows whether the measurements were in cd/m2.
profiled_display as_measured(const monitor& mon, std::size_t points = 1024);

/// A profile without `vcgt`.
std::string monitor_icc_file(const profiled_display& display, const description& about);

}  // namespace corvantile
