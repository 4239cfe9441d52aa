#pragma once
// Readings sorted into ramps, and what repeated readings of one patch tell about the run.

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "corvantile/documents/measurement_file.hpp"
#include "corvantile/readings/readings.hpp"

namespace corvantile {

/// Drives no further apart than this are one level, of full drive 1. Real charts hold grays only 3e-4 apart.
inline constexpr double same_drive = 1e-4;

/// All readings of one colour.
struct patch {
  vec3 drive;                     ///< mean of its readings
  vec3 xyz;                       ///< mean of its readings
  std::vector<std::size_t> rows;  ///< indices into `readings::rows`, in the order of measuring; never empty
};

/// White, red, green and blue ramp, the dark, and whatever stands on none of them.
struct sorted_readings {
  std::array<std::vector<patch>, 4> ramp;  ///< levels above 0, rising; empty where the chart has none
  std::optional<patch> dark;               ///< zero drive in all channels
  std::vector<std::size_t> others;         ///< indices of the remaining rows, in file order
  std::vector<std::size_t> dropped;        ///< indices of rows that are not to be used at all
  std::vector<std::string> notes;          ///< a sentence about each of these, with its line
};

/// Sorts the rows. Dropped, and said: a reading without any light among brighter ones of the same patch, or of a
/// mixture above a fifth of full drive, which has failed; and a level that stands out of a ramp, by a fifth and 1 %
/// of its top or more, brighter than the next level or darker than the one before: something else was on the screen.
/// Not the top.
sorted_readings sort_readings(const readings& all);

/// Whether a patch shows full drive: the last of a ramp must, or the ramp has no top.
bool is_full(const patch& p);

/// What repeated readings tell about the run.
repeatability repeats(const readings& all, const sorted_readings& sorted);

}  // namespace corvantile
