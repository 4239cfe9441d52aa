#pragma once
// The sheets that HCFR saves as CSV: cells in double quotes, separated by `;`; X, Y, Z in cd/m2.

#include <optional>
#include <string>
#include <string_view>

#include "corvantile/formats/source.hpp"
#include "corvantile/readings/readings.hpp"

namespace corvantile {

enum class hcfr_sheet { gray_scale, primaries, color_checker };

/// Which sheet a text is, by its first line; nothing if it is none of them.
std::optional<hcfr_sheet> hcfr_sheet_of(std::string_view text);

/// The readings of a GrayScaleSheet and a PrimariesSheet, in either order, or of a ColorCheckerSheet whose patches
/// have names that state their drive. HCFR appends a series with each save; the last one counts.
/// Throws `fault::content` with line and value if a sheet is cut short, and if the gray scale or the primaries are
/// missing.
readings read_hcfr(const source& first, const std::optional<source>& second = {});

/// The name that states a patch's drive in percent: "W 50.228", "R 100.000", "RGB 10.046 0.000 100.000".
std::string hcfr_patch_name(const vec3& drive);

/// The drive that such a name states; nothing for any other name. Rounded drives of video codes 16 to 235 come back
/// exact.
std::optional<vec3> drive_of_hcfr_name(std::string_view name);

}  // namespace corvantile
