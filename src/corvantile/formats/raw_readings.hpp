#pragma once
// From numbers as a file has them to readings: the scale of the drive values, and what is no reading at all.

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "corvantile/numerics/matrix.hpp"
#include "corvantile/readings/readings.hpp"

namespace corvantile {

/// A drive in the file's own scale, and X, Y, Z that may be no reading at all.
struct raw_reading {
  vec3 drive;
  vec3 xyz;
  std::size_t line = 0;
};

/// What the file writes for a channel that is off, and for full drive.
struct drive_scale {
  double off = 0;
  double full = 1;
  friend bool operator==(const drive_scale&, const drive_scale&) = default;
};

/// The usual scale that the rows fill: 0 to 1, 100, 255, 1023, 4095 or 65535, whichever is the first to hold the
/// largest value; the video codes 16 to 235 and 64 to 940 where these are exactly the smallest and the largest. Says
/// in `into.notes` what it took, unless it is `usual`. Throws `fault::content` where no scale can hold the values, or
/// none is above 0.
drive_scale guess_drive_scale(readings& into, std::span<const raw_reading> rows, const drive_scale& usual = {0, 0});

/// Appends the rows, their drives brought to 0..1. What strays from there by up to 0.1 % of full drive is put to the
/// end of the range; more than that is refused with its line, and so is a drive that is no number.
///
/// Left out, with a note that names the line: readings that are not finite or beyond 1e12, those that spell "not
/// measured"
/// (-99999.99; -1 three times), and 0 0 0 at a drive of 20 % or more, where any instrument sees light.
/// Throws `fault::content` where nothing remains.
void append_rows(readings& into, std::span<const raw_reading> rows, const drive_scale& scale);

/// x, y and the luminance Y as X, Y, Z: X = x Y / y, Z = (1 - x - y) Y / y; black for Y = 0. A y of 0 with light
/// gives values that are not finite.
vec3 xyz_of_xyY(double x, double y, double luminance);

}  // namespace corvantile
