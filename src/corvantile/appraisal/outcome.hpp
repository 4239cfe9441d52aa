#pragma once
// What a correction does, in figures: the corrected display against its target, both as the model sees them.

#include <optional>
#include <vector>

#include "corvantile/colour/chromaticity.hpp"
#include "corvantile/job/correction.hpp"
#include "corvantile/numerics/matrix.hpp"

namespace corvantile {

/// Luminances are in the unit of the measurements; colours X, Y, Z; chromaticities CIE 1931 x, y.
struct outcome {
  vec3 white_before, white_after;
  vec3 black_before, black_after;
  vec2 white_wanted;  ///< of the target
  /// CV2 and CV2_1: the primaries asked for, those that the display can show, and those that it shows behind the
  /// tables (less the dark light); how far each was moved, in CIE 1960 uv.
  struct primaries {
    chromaticity_table asked, reachable, shown;
    vec3 moved;
  };
  std::optional<primaries> gamut;
  /// CIEDE2000 of every gray against its target, seen against the white that the corrected display shows.
  std::vector<double> gray_differences;
  double gray_mean = 0;
  double gray_largest = 0;
};

/// `set` are the settings that `result` was solved with. Behind gray factors, colours are those expected of the
/// display: the model's, divided by the factors. A row that is not a number is left out of mean and largest.
outcome outcome_of(const correction& result, const settings& set);

}  // namespace corvantile
