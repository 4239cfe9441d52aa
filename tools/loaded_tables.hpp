#pragma once
// The tables in a folder, as a device in front of a display applies them.

#include <array>
#include <string>

#include "numerics/matrix.hpp"
#include "utils/lut.hpp"

namespace corvantile {

/// Tables of reals: pre-table, matrix, post-table; identities where there is one table only.
struct loaded_tables {
  std::array<lut, 3> pre, post;
  mat3 mix;
};

/// `preLUT.txt`, `matrix.txt` and `postLUT.txt` where the first two are there, else `postLUT.txt` alone. Throws
/// `fault::content`, naming the file, for one that is missing or is no table of reals.
loaded_tables load_tables(const std::string& folder);

/// What reaches the display for drives from 0 to 1. Tables hold their end values beyond their ends.
vec3 through(const loaded_tables& tables, const vec3& drive);

}  // namespace corvantile
