#pragma once
// From the numbers in a file to readings: the scale of the drive values, and rows that cannot be used.

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "corvantile/numerics/matrix.hpp"
#include "corvantile/readings/readings.hpp"

namespace corvantile {

/// A drive in the file's own scale, and X, Y, Z that may have failed.
struct raw_reading {
  vec3 drive;
  vec3 xyz;
  std::size_t line = 0;
};

/// The file's numbers for a channel that is off and for full drive.
struct drive_scale {
  double off = 0;
  double full = 1;
  friend bool operator==(const drive_scale&, const drive_scale&) = default;
};

/// The scale of the rows: 0 to 1, 100, 255, 1023, 4095 or 65535, the first that holds the largest value; or video
/// codes 16 to 235 or 64 to 940, if these are exactly the smallest and the largest. Adds a note unless it is `usual`.
/// Throws `fault::content` if no scale holds the values, or none is above 0.
drive_scale guess_drive_scale(readings& into, std::span<const raw_reading> rows, const drive_scale& usual = {0, 0});

/// Appends the rows, with drives scaled to 0..1. A drive outside by up to 0.1 % of full drive is clamped; one that is
/// further out or not a number is refused with its line.
///
/// Drops, with a note, readings that are not finite or beyond 1e12, those that mean "not measured" (-99999.99; -1
/// three times), and 0 0 0 at a drive of 20 % or more, where any instrument sees light. Throws `fault::content` if no
/// row remains.
void append_rows(readings& into, std::span<const raw_reading> rows, const drive_scale& scale);

/// X, Y, Z of a chromaticity and the luminance Y: X = x Y / y, Z = (1 - x - y) Y / y; black for Y = 0. If y is 0 and
/// Y is not, the result is not finite.
vec3 xyz_of_xyY(double x, double y, double luminance);

}  // namespace corvantile
