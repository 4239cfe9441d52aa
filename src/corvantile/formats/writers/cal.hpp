#pragma once
// The calibration file of ArgyllCMS (.cal): exact for gray-axis jobs.

#include <array>
#include <string>

#include "corvantile/formats/writers/writer.hpp"

namespace corvantile {

/// One table as it is. A two-table correction is refused. The file replaces a calibration that was in effect while
/// measuring: compose it into the table before.
std::string cal_file(const device_tables& tables, const description& about);

/// A calibration as it was in effect while measuring: one row for each abscissa of the red curve, which has two at
/// least.
std::string calibration_file(const std::array<lut, 3>& curves, const description& about);

}  // namespace corvantile
