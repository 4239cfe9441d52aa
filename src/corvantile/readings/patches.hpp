#pragma once
// Readings sorted into ramps, and what repeated readings of one patch tell about the run.

#include <array>
#include <cstddef>
#include <optional>
#include <vector>

#include "corvantile/documents/measurement_file.hpp"
#include "corvantile/readings/readings.hpp"

namespace corvantile {

/// Drives this close are one level; full drive is 1. Real charts have grays only 3e-4 apart.
inline constexpr double same_drive = 1e-4;

/// All readings of one colour.
struct patch {
  vec3 drive;                     ///< mean of its readings
  vec3 xyz;                       ///< mean of its readings
  std::vector<std::size_t> rows;  ///< indices into `readings::rows`, in the order of measuring; never empty
};

/// The largest of the three drives.
double largest_drive(const vec3& drive);

/// White, red, green and blue ramp, the dark, and the rest.
struct sorted_readings {
  std::array<std::vector<patch>, 4> ramp;  ///< levels above 0, rising; empty if the chart has none
  std::optional<patch> dark;               ///< zero drive in all channels
  std::vector<std::size_t> others;         ///< indices of the rows on no ramp, in file order
  std::vector<std::size_t> dropped;        ///< indices of the rows that must not be used
  note_list notes;                         ///< why those were dropped
};

/// Sorts the rows. Drops, with a note:
/// - a reading without any light, if other readings of the patch have some or if it is a mixture above a fifth of
/// full
///   drive: it failed;
/// - a level below the top of a ramp that is brighter than the next level or darker than the one before, by a fifth
///   and by 1 % of the top: something else was on the screen.
sorted_readings sort_readings(const readings& all);

/// Whether a patch shows full drive, as the last of a ramp must.
bool is_full(const patch& p);

/// What repeated readings tell about the run.
repeatability repeats(const readings& all, const sorted_readings& sorted);

}  // namespace corvantile
