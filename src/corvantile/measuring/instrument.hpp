#pragma once
// Any program that reads a patch and prints X, Y, Z.

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

#include "corvantile/measuring/outcome.hpp"
#include "corvantile/measuring/stop_signals.hpp"
#include "corvantile/numerics/matrix.hpp"

namespace corvantile::measuring {

/// A command line for /bin/sh that takes one reading, such as `spotread -e -O -y l`. It gets no input.
struct instrument {
  std::string command;
  std::chrono::milliseconds limit{60000};  ///< for one reading
};

/// One reading, or why there is none.
struct instrument_reading {
  std::optional<vec3> xyz;  ///< in cd/m2
  report status = {};
  bool again_may_help = false;  ///< it failed in a way that a second try may mend
};

/// Runs the command once. What it prints is read by `xyz_in`; a status other than 0 is a failure all the same.
instrument_reading read_once(const instrument& from, stop_signals& stop);

/// The X, Y, Z that a program printed: behind the last `Result is XYZ:`, else the last line that consists of three
/// numbers, with a decimal point or comma, separated by blanks, tabs or semicolons (or by commas, if the numbers have
/// points). Nothing if there are none, or if they are not light: not finite, beyond 1e12, or below -1 cd/m2 (dark
/// readings scatter around 0).
std::optional<vec3> xyz_in(std::string_view printed);

}  // namespace corvantile::measuring
