#include "corvantile/job/warning.hpp"

namespace corvantile {

std::string_view name_of(caution kind) {
  switch (kind) {
    case caution::ramp_not_to_zero:
      return "ramp-not-to-zero";
    case caution::ramp_below_full:
      return "ramp-below-full";
    case caution::zeros_differ:
      return "zeros-differ";
    case caution::luminance_rises:
      return "luminance-rises";
    case caution::luminance_level:
      return "luminance-level";
    case caution::channels_do_not_add:
      return "channels-do-not-add";
    case caution::too_many_pieces:
      return "too-many-pieces";
    case caution::table_not_filled:
      return "table-not-filled";
    case caution::undefined_row:
      return "undefined-row";
    case caution::white_out_of_reach:
      return "white-out-of-reach";
    case caution::dark_swath:
      return "dark-swath";
    case caution::gray_not_found:
      return "gray-not-found";
    case caution::gray_falls:
      return "gray-falls";
    case caution::matrix_negative:
      return "matrix-negative";
    case caution::matrix_exchanged:
      return "matrix-exchanged";
    case caution::matrix_above_one:
      return "matrix-above-one";
    case caution::coarse_codes:
      return "coarse-codes";
  }
  return "";
}

}  // namespace corvantile
