#pragma once
// Tables that lie in a folder, whoever put them there.

#include <optional>
#include <string>

#include "corvantile/numerics/matrix.hpp"

namespace corvantile {

/// What stands before a display: pre-table, matrix, post-table. Without a pre-table, the matrix is the identity.
struct tables_on_disk {
  std::optional<matrix> pre;  ///< n x 3
  mat3 mix{{{{{1, 0, 0}}, {{0, 1, 0}}, {{0, 0, 1}}}}};
  matrix post;  ///< n x 3
};

/// `preLUT.txt`, `matrix.txt` and `postLUT.txt` where the first two are both there, else `postLUT.txt` alone. Throws
/// `fault::content`, naming file and line, for a table that is missing, has not three columns and at least two rows,
/// or holds integers, whose number of bits no file tells.
tables_on_disk read_tables(const std::string& folder);

}  // namespace corvantile
