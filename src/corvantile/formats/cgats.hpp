#pragma once
// Readings in CGATS texts: ArgyllCMS's .ti3 and what other programs write with the same keywords.

#include <string_view>

#include "corvantile/readings/readings.hpp"

namespace corvantile {

/// The readings of the first table that is not a calibration. Columns are found by name, in any order and case:
/// RGB_R, RGB_G, RGB_B, and XYZ_X, XYZ_Y, XYZ_Z or XYY_X, XYY_Y, XYY_CAPY; others, such as spectra, are skipped.
///
/// X, Y, Z are in cd/m2 if the file says so (NORMALIZED_TO_Y_100 "NO") or gives the luminance of white
/// (LUMINANCE_XYZ_CDM2), else relative. A table CAL becomes `calibration` unless it is the identity.
///
/// Throws `fault::content` with line and value if the text is cut short, lacks these columns (it may have only CIELAB
/// or spectra), is a chart still to be measured, or was not read from a display.
readings read_cgats(std::string_view name, std::string_view text);

}  // namespace corvantile
