#pragma once
// The whole program except `main`: from settings text to written tables.

#include <iosfwd>
#include <span>
#include <string_view>

#include "corvantile/utils/version.hpp"

namespace corvantile {

/// First line on standard error, and of a verbose report. Its number is not the release: it changes only if a byte of
/// the tables or of the printed numbers changes. Callers and stored reports compare it.
inline constexpr std::string_view banner = "Corvantile 1.09";

/// What `--version` prints: the release, and the version of its tables.
inline constexpr std::string_view version_line = "Corvantile " CORVANTILE_VERSION ", tables as of 1.09";

/// Whether an argument is "-verbose" or "-v", apart from trailing blanks. All others are ignored.
bool verbose_requested(std::span<const std::string_view> arguments);

/// Reads the settings group from `text`, loads the files it names, solves and writes the tables. If `arguments`
/// (those after the program's name) ask for it, reports on `out`. Warnings and, at the end, "normal exit" go to
/// `err`. Throws `failure` if the run must end. Flush `out` before you print the message elsewhere, so that lines
/// stay in order.
void run_program(std::span<const std::string_view> arguments, std::string_view text, std::ostream& out,
                 std::ostream& err);

}  // namespace corvantile
