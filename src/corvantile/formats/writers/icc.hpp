#pragma once
// The display profile with a `vcgt` tag, which loaders put into the graphics card: exact for gray-axis jobs, 16 bit.

#include <cstddef>
#include <string>

#include "corvantile/formats/writers/icc_profile.hpp"
#include "corvantile/formats/writers/writer.hpp"

namespace corvantile {

/// The length that every loader takes: some old ones pick entries instead of interpolating.
inline constexpr std::size_t usual_vcgt_entries = 256, most_vcgt_entries = 4096;

/// `behind` is the display behind the table: its curves are the target's, its white and colorants the corrected ones.
/// The table is resampled to `entries`, 2 to 4096. A two-table correction is refused. The tag replaces a calibration
/// that was in effect while measuring: compose it into the table before.
std::string icc_file(const device_tables& tables, const profiled_display& behind, const description& about,
                     std::size_t entries = usual_vcgt_entries);

}  // namespace corvantile
