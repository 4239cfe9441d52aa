#pragma once
// The header of a table of readings: which column holds what, and in which unit.

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace corvantile {

struct table_columns {
  std::array<std::size_t, 3> drive{};  ///< positions of R, G, B
  std::array<std::size_t, 3> light{};  ///< positions of X, Y, Z, or of x, y, Y
  std::size_t width = 0;               ///< how many columns the header names
  bool chromaticity = false;           ///< `light` is x, y, Y
  bool absolute = false;               ///< the unit of luminance is cd/m2
  bool percent = false;                ///< the unit of the drives is %
};

/// Finds the columns by their names. If some are missing or appear twice: nothing, and `problem` says which.
std::optional<table_columns> read_table_header(std::span<const std::string_view> names, std::string& problem);

}  // namespace corvantile
