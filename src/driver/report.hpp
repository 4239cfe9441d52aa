#pragma once
// What a job leaves behind: its table files, and the reports of verbose mode.

#include <cstdint>
#include <iosfwd>
#include <string>

#include "monitor/monitor.hpp"
#include "monitor/synthetic_monitor.hpp"
#include "numerics/matrix.hpp"

namespace corvantile {

/// Writes a table, a line per row, to the file `name` in `outdir` (which ends in "/"; the path is cut to 256
/// characters): entries as reals where `maxcode` is 0, else as integers in units of 1 / maxcode. Stops the run with
/// status 8, leaving the file as it was, where an entry is not finite or has no code; `last_row_may_be_nan` lets the
/// last row of a table of reals be not a number. Status 6 where it cannot be written.
void write_table(const std::string& outdir, const std::string& name, const matrix& table, std::int64_t maxcode,
                 bool last_row_may_be_nan = false);
void write_table(const std::string& outdir, const std::string& name, const mat3& m, std::int64_t maxcode);

/// Prints the colour temperature and then the luminance of every row of a gray ramp: `inputs` as `mon` shows them.
void report_gray_ramp(std::ostream& out, const monitor& mon, const matrix& inputs);

/// Drives seven ramps of 200 samples through both displays, and prints each ramp's largest CIEDE2000 difference and
/// then all 200. Reference white of the Lab values is `syn_whitepoint`, for both displays: not the white they show.
void report_ramps(std::ostream& out, const monitor& mon, const synthetic_monitor& syn);

}  // namespace corvantile
