#pragma once
// What an instrument's file says, before anybody decides what it means.

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "corvantile/documents/measurement_file.hpp"
#include "corvantile/numerics/matrix.hpp"

namespace corvantile {

/// One patch as it was read.
struct reading {
  vec3 drive;            ///< red, green, blue, each from 0 (off) to 1 (full drive)
  vec3 xyz;              ///< CIE 1931 X, Y, Z
  std::size_t line = 0;  ///< where it stands in the source, counted from 1
};

/// The content of one source. Every drive lies in [0, 1] and every X, Y, Z is a finite number; what is empty or
/// absent was not told by the file.
struct readings {
  std::string source;  ///< the file's name, or two joined by " + "
  std::string kind;    ///< "Argyll .ti3", "CGATS", "CSV", "HCFR", "Corvantile measurements"
  std::string instrument;
  std::string originator;                         ///< the program that measured
  std::string date;                               ///< as the file spells it
  std::string display;                            ///< maker's or user's name of it
  bool absolute = false;                          ///< X, Y, Z in cd/m2; else relative, in an unknown unit
  std::vector<reading> rows;                      ///< in the file's order, which is that of measuring
  std::optional<calibration_curves> calibration;  ///< in effect while measuring; absent where none or the identity
  std::vector<std::string> notes;                 ///< what was dropped, converted or guessed: one sentence each
};

}  // namespace corvantile
