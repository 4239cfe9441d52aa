#pragma once
// What was measured: the ramps of one display. documents/measurement_file.hpp reads and writes them.

#include <cstddef>
#include <string>
#include <vector>

#include "corvantile/numerics/matrix.hpp"

namespace corvantile {

/// One sample a row: R, G, B (drive, any unit; the largest number in the table is full drive), then X, Y, Z (CIE
/// 1931, in cd/m2 or with white near 100). The rows begin with the ramps, `nramp` each, from full drive down to zero:
/// white, red, green, blue and, in version 1, three more that serve the dark light only. Rows after them are extra
/// samples, which no fit uses.
struct measurements {
  std::string name;                     ///< of the file, for messages
  matrix data;                          ///< rows x 6
  int nramp = 0;                        ///< levels in each ramp, at least 2
  int version = 2;                      ///< 1: seven ramps, 2: four
  std::vector<std::size_t> lines = {};  ///< of the file, counted from 1, where each row begins; empty: no file
};

/// Ramps of a table of that version: 7 or 4. Throws `fault::version` for any other.
std::size_t ramp_count(int version);

/// A row in words: "sample 20 (level 3 of the red ramp)". Counts from 1.
std::string sample_text(const measurements& samples, std::size_t row);

/// The same behind the line of the file where it stands, if that is known: "line 22: sample 20 (level 3 of ...)".
std::string place_text(const measurements& samples, std::size_t row);

/// The drive by which a row of a ramp is told to be higher or lower: that of the ramp's own channel, or, in ramps of
/// more than one channel, the largest of the three.
double ramp_drive(const measurements& samples, std::size_t row);

/// Throws `fault::content`, naming line and sample, for a ramp whose first sample is not its highest drive or whose
/// last is not its lowest. Equal drives are not higher.
void require_falling_ramps(const measurements& samples);

}  // namespace corvantile
