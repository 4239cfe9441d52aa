#pragma once
// The gamma-curve file: a count n, then n pairs of drive value and luminance, in free format and any unit.

#include <optional>
#include <string>
#include <vector>

#include "utils/lut.hpp"

namespace corvantile {

/// The file's text, not yet looked at.
struct gamma_file {
  std::string name;
  std::string text;
};

/// Nothing when the file cannot be opened, which is no error in itself.
std::optional<gamma_file> open_gamma_file(const std::string& name);

/// The normalised curve, two equal lengths of at least 2: p from 0 to 1, rising (neighbours a rounding error apart
/// may meet); L from 0 to 1.
struct gamma_curve {
  std::vector<double> p;
  std::vector<double> L;
  bool start_was_moved = false;  ///< the first drive value was not 0 and has been set to 0
};

/// Reads and normalises the curve. Stops the run with status 5, the file's name and the line or point, where the
/// content gives no curve: bad or missing numbers, drive values that do not rise, a luminance range of 0.
gamma_curve read_gamma_curve(const gamma_file& file);

/// The target tone curve: a monotone smoothing of `numsegs` pieces, at the file's own drive values. Status 5 where no
/// finite curve comes of it.
lut smooth_gamma_curve(const gamma_file& file, const gamma_curve& curve, int numsegs);

}  // namespace corvantile
