#pragma once
// What a job has to say: the text of its tables, and the reports of verbose mode.

#include <cstdint>
#include <iosfwd>
#include <string>

#include "monitor/monitor.hpp"
#include "monitor/synthetic_monitor.hpp"
#include "numerics/matrix.hpp"

namespace corvantile {

/// The text of a table's file, a line per row: entries as reals where `maxcode` is 0, else as integers in units of
/// 1 / maxcode. `path` is for the message: an entry that is not finite or has no code stops the run with status 8.
/// `last_row_may_be_nan` lets the last row of a table of reals be not a number.
std::string table_text(const std::string& path, const matrix& table, std::int64_t maxcode,
                       bool last_row_may_be_nan = false);

/// Prints the colour temperature and then the luminance of every row of a gray ramp: `inputs` as `mon` shows them.
void report_gray_ramp(std::ostream& out, const monitor& mon, const matrix& inputs);

/// Drives seven ramps of 200 samples through both displays, and prints each ramp's largest CIEDE2000 difference and
/// then all 200. Reference white of the Lab values is `syn_whitepoint`, for both displays: not the white they show.
void report_ramps(std::ostream& out, const monitor& mon, const synthetic_monitor& syn);

}  // namespace corvantile
