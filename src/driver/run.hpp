#pragma once
// One job, from filled settings to written tables.

#include <iosfwd>
#include <span>
#include <string_view>

#include "driver/settings.hpp"

namespace corvantile {

inline constexpr std::string_view banner = "Corvantile 1.09";

/// Loads the measurements, solves in the mode that `set` names, writes the tables into its directory and, when
/// `verbose`, reports on `out`. Ends with "normal exit" on `err`. Standard input is not touched and the process is
/// not ended: what must end the run throws `stop_run`. The caller flushes `out` before it prints that message on
/// another stream, so that the order is kept. The settings are complete: they have been through `fill_xytable` and
/// `end_outdir_with_slash`. Several jobs may run one after the other; each owns all that it works on.
void run(const settings& set, bool verbose, std::ostream& out, std::ostream& err);

/// The whole program behind its command line: reads the settings group from `profile` (all of
/// standard input), checks it, fills in what follows from it and runs the job. `arguments` are those
/// after the program's name. Throws like `run`.
void run_program(std::span<const std::string_view> arguments, std::string_view profile, std::ostream& out,
                 std::ostream& err);

}  // namespace corvantile
