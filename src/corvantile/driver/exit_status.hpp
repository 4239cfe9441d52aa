#pragma once
// How the program ends. Scripts rely on the numbers.

#include <string>

#include "corvantile/utils/failure.hpp"

namespace corvantile {

namespace exit_status {
inline constexpr int normal = 0;  ///< also where a measurement file cannot be opened or has an unknown version
inline constexpr int no_mode = 1;
inline constexpr int unknown_mode = 2;
inline constexpr int no_measurement_file = 3;
inline constexpr int bad_settings = 4;
inline constexpr int bad_content = 5;  ///< of a measurement or gamma file
inline constexpr int cannot_write = 6;
inline constexpr int no_memory = 7;
inline constexpr int not_finite = 8;  ///< an entry of a table
}  // namespace exit_status

/// What a failure becomes: a status, and a line on one of the two streams.
struct ending {
  int status;
  bool on_standard_output;
  std::string line;
};

/// A measurement file that cannot be opened is told of on standard output, and it and an unknown version end with
/// status 0: scripts have come to expect that.
inline ending ending_of(const failure& f) {
  using namespace exit_status;
  const auto blank_first = " " + f.message;  // lines that are as old as the program begin so
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
    case fault::inexpressible:  // a word of other programs than this one
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
