#pragma once
// One call from measurements to tables.

#include <optional>

#include "corvantile/colour/gray_factors.hpp"
#include "corvantile/job/finding.hpp"
#include "corvantile/job/settings.hpp"
#include "corvantile/job/tone_samples.hpp"
#include "corvantile/matching/matching.hpp"
#include "corvantile/monitor/measurements.hpp"
#include "corvantile/monitor/monitor.hpp"
#include "corvantile/numerics/matrix.hpp"
#include "corvantile/utils/lut.hpp"

namespace corvantile {

/// The result of a job. Tables have `tlen` rows, row i for the input i / (tlen - 1), and columns red, green, blue.
/// Entries are drive values or linear values, 0 to 1.
struct correction {
  match_mode mode = match_mode::cv1;
  monitor measured;  ///< the fitted model of the display
  lut tone;          ///< the target tone curve: drive 0..1 to luminance 0..1

  /// CV2 and CV2_1: pre-table, matrix, post-table, the display behind them, target, clipped target, distances moved.
  /// In CV2_1 `prelut` includes the gray match, but `cmon` does not.
  std::optional<two_table_solution> two;

  /// The gray ramp to put into `display`. In CV1 it is the table that a device loads (drive to drive), in CV2_1 what
  /// the gray match adds before the pre-table, in CV2 the plain ramp. All zero if `alpha` and `beta` rule out the
  /// gray match.
  matrix gray;
  monitor display;       ///< what `gray` drives: `measured`, or `two->cmon`
  gray_factors factors;  ///< the wanted grays were multiplied by these; empty without a gray match

  /// The row of `gray` (and of CV2_1's `prelut`) that is NaN, if there is one: see `gray_match`.
  std::optional<std::size_t> undefined_row;

  std::vector<finding> warnings;  ///< what not to trust, in the order in which it was found
  double two_seconds = 0;         ///< CPU time of this process for the two-table solution
  double gray_seconds = 0;        ///< and for the gray match
};

/// Fits the display, solves in the mode of the settings, and judges the result. The target tone curve comes from
/// `tone`, or from the power law of `gamma` if that is absent. `factors` correct the gray match after a measurement
/// with the tables loaded; they cannot be combined with `wptemp` and `hwid`. Several threads may call it at once: it
/// uses no files and no global state. Throws `fault::setting` or `fault::content`.
correction solve(const settings& set, const measurements& samples, const std::optional<tone_samples>& tone = {},
                 const gray_factors& factors = {});

}  // namespace corvantile
