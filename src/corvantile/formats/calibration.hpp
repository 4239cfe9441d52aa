#pragma once
// Video-LUT calibrations as ArgyllCMS keeps them: CGATS tables of type CAL, with the columns RGB_I, RGB_R, RGB_G and
// RGB_B from 0 to 1.

#include <string>
#include <string_view>

#include "corvantile/formats/cgats_table.hpp"
#include "corvantile/readings/readings.hpp"

namespace corvantile {

/// The curves of a .cal file. Throws `fault::content` if the text is not one, if it is cut short, or if its curves
/// are not at least two rows from 0 to 1 with rising inputs.
calibration_curves read_calibration(std::string_view name, std::string_view text);

/// The same for one table of a text: a .ti3 may hold the calibration that it was measured through.
calibration_curves calibration_from(std::string_view name, const cgats_table& table);

/// Whether the curves change every drive by 1e-4 at most, the rounding of such tables.
bool is_identity(const calibration_curves& curves);

}  // namespace corvantile
