#pragma once
// The calibration file of ArgyllCMS (.cal): exact for gray-axis jobs.

#include <string>

#include "formats/writers/table_set.hpp"

namespace corvantile {

/// One table as it is. A two-table correction is refused. The file replaces a calibration that was in effect while
/// measuring: compose it into the table before.
std::string cal_file(const table_set& tables, const description& about);

}  // namespace corvantile
