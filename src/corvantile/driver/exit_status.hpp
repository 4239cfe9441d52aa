#pragma once
// Exit statuses and last lines of the program. Scripts rely on them.

#include <string>

#include "corvantile/utils/failure.hpp"

namespace corvantile {

namespace exit_status {
inline constexpr int normal = 0;  ///< also if the measurement file cannot be opened or has an unknown version
inline constexpr int no_mode = 1;
inline constexpr int unknown_mode = 2;
inline constexpr int no_measurement_file = 3;
inline constexpr int bad_settings = 4;
inline constexpr int bad_content = 5;  ///< of a measurement or gamma file
inline constexpr int cannot_write = 6;
inline constexpr int no_memory = 7;
inline constexpr int not_finite = 8;  ///< entry of a table
}  // namespace exit_status

/// How the program ends after a failure: its status, and a line on one of the two streams.
struct ending {
  int status;
  bool on_standard_output;
  std::string line;
};

/// If the measurement file cannot be opened, the message goes to standard output. This and an unknown version end
/// with status 0. Both are odd, but scripts expect them.
inline ending ending_of(const failure& f) {
  using namespace exit_status;
  const auto blank_first = " " + f.message;  // the oldest messages begin with a blank
  switch (f.kind) {
    case fault::no_mode:
      return {no_mode, false, blank_first};
    case fault::unknown_mode:
      return {unknown_mode, false, blank_first};
    case fault::no_measurement_file:
      return {no_measurement_file, false, blank_first};
    case fault::no_measurements:
      return {normal, true, blank_first};
    case fault::version:
      return {normal, false, "STOP " + f.message};
    case fault::setting:
    case fault::inexpressible:  // never here: other programs throw it
      return {bad_settings, false, f.message};
    case fault::content:
    case fault::no_gamma:
      return {bad_content, false, f.message};
    case fault::unwritable:
      return {cannot_write, false, f.message};
    case fault::not_finite:
      return {not_finite, false, f.message};
  }
  return {bad_content, false, f.message};
}

}  // namespace corvantile
