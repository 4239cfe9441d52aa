#pragma once
// The whole program behind its command line: from settings text to written tables.

#include <iosfwd>
#include <span>
#include <string_view>

#include "corvantile/utils/version.hpp"

namespace corvantile {

/// First line on standard error, and of a verbose report. It names the version that the tables and the printed
/// numbers are those of, to the byte, and not the release: callers and stored reports compare it. It changes when
/// they do.
inline constexpr std::string_view banner = "Corvantile 1.09";

/// What `--version` says: the release, and whose tables it makes.
inline constexpr std::string_view version_line = "Corvantile " CORVANTILE_VERSION ", tables as of 1.09";

/// True when an argument is "-verbose" or "-v", trailing blanks aside. All others mean nothing.
bool verbose_requested(std::span<const std::string_view> arguments);

/// Reads the settings group from `text`, loads what it names, solves, writes the tables and, when asked to by the
/// arguments (those after the program's name), reports on `out`. Warnings and, at last, "normal exit" go to `err`.
/// Standard input is not touched and the process is not ended: what must end the run throws `failure`. The caller
/// flushes `out` before it prints that message on another stream, so that the order is kept.
void run_program(std::span<const std::string_view> arguments, std::string_view text, std::ostream& out,
                 std::ostream& err);

}  // namespace corvantile
