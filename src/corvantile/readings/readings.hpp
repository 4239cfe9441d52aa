#pragma once
// What an instrument's file says, before anybody decides what it means.

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "corvantile/documents/measurement_file.hpp"
#include "corvantile/numerics/matrix.hpp"
#include "corvantile/readings/notes.hpp"

namespace corvantile {

/// One patch as it was read.
struct reading {
  vec3 drive;            ///< red, green, blue, each from 0 (off) to 1 (full drive)
  vec3 xyz;              ///< CIE 1931 X, Y, Z
  std::size_t line = 0;  ///< of the source, counted from 1
};

/// The content of one source. Every drive is in [0, 1] and every X, Y, Z is finite. What the file does not tell is
/// empty or absent.
struct readings {
  std::string source;  ///< the file's name, or two joined by " + "
  std::string kind;    ///< "Argyll .ti3", "CGATS", "CSV", "HCFR", "Corvantile measurements"
  std::string instrument;
  std::string originator;                         ///< the program that measured
  std::string date;                               ///< as the file spells it
  std::string display;                            ///< its name, from the maker or the user
  bool absolute = false;                          ///< X, Y, Z in cd/m2; else relative, in an unknown unit
  std::vector<reading> rows;                      ///< in the order of the file, which is the order of measuring
  std::optional<calibration_curves> calibration;  ///< in effect while measuring; absent if none or the identity
  note_list notes;
};

}  // namespace corvantile
