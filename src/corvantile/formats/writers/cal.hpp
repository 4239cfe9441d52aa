#pragma once
// The calibration file of ArgyllCMS (.cal): exact for gray-axis jobs.

#include <array>
#include <string>

#include "corvantile/formats/writers/writer.hpp"

namespace corvantile {

/// The one table as it is; a two-table correction is refused. The file replaces a calibration that was in effect
/// while measuring: compose it into the table first.
std::string cal_file(const device_tables& tables, const description& about);

/// A calibration as it was in effect while measuring: one row for each abscissa of the red curve, which has at least
/// two.
std::string calibration_file(const std::array<lut, 3>& curves, const description& about);

}  // namespace corvantile
