#pragma once
// Results that were made but are not to be trusted.

#include <string>
#include <string_view>

namespace corvantile {

/// What is wrong. `name_of` gives the name by which programs know it.
enum class caution {
  ramp_not_to_zero,     ///< the last sample of a ramp has a drive other than 0
  ramp_below_full,      ///< the first sample of a ramp is not at full drive
  zeros_differ,         ///< the ramps' readings at zero drive are not one dark
  luminance_rises,      ///< a ramp gets brighter towards the dark
  luminance_level,      ///< a ramp stays equally bright over several levels
  channels_do_not_add,  ///< red, green and blue together are not the white
  too_many_pieces,      ///< the fitted curves have more pieces than the levels carry
  table_not_filled,     ///< the gray match made no table
  undefined_row,        ///< the gray match's last row is not a number
  white_out_of_reach,   ///< the display cannot show the white at any level
  dark_swath,           ///< `hwid` above 0 costs light
  gray_not_found,       ///< a search for a gray ended away from it
  gray_falls,           ///< a gray has lower drive values than the darker one before it
  matrix_negative,      ///< the matrix has a negative entry
  matrix_exchanged,     ///< a column of the matrix serves another channel than its own
  matrix_above_one,     ///< a row of the matrix asks for more than full drive
  coarse_codes          ///< integers too coarse for a pre-table in linear light
};

/// A name of lower-case words and hyphens, such as "table-not-filled".
std::string_view name_of(caution kind);

/// The kind, and a sentence or two for people: key or sample, value, what it means, what to do.
struct warning {
  caution kind;
  std::string message;
};

}  // namespace corvantile
