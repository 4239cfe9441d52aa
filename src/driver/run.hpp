#pragma once
// The whole program behind its command line: from settings text to written tables.

#include <iosfwd>
#include <span>
#include <string_view>

#include "utils/version.hpp"

namespace corvantile {

inline constexpr std::string_view banner = "Corvantile " CORVANTILE_VERSION;

/// True when an argument is "-verbose" or "-v", trailing blanks aside. All others mean nothing.
bool verbose_requested(std::span<const std::string_view> arguments);

/// Reads the settings group from `text`, loads what it names, solves, writes the tables and, when asked to by the
/// arguments (those after the program's name), reports on `out`. Warnings and, at last, "normal exit" go to `err`.
/// Standard input is not touched and the process is not ended: what must end the run throws `failure`. The caller
/// flushes `out` before it prints that message on another stream, so that the order is kept.
void run_program(std::span<const std::string_view> arguments, std::string_view text, std::ostream& out,
                 std::ostream& err);

}  // namespace corvantile
