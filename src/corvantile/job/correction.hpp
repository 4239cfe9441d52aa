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

/// What a job gives. Tables have `tlen` rows, row i for the input i / (tlen - 1), and columns red, green, blue; their
/// entries are drive values or linear values, 0 to 1.
struct correction {
  match_mode mode = match_mode::cv1;
  monitor measured;  ///< the display as measured: the model that was fitted
  lut tone;          ///< the target tone curve: drive 0..1 to luminance 0..1

  /// CV2 and CV2_1: pre-table, matrix, post-table, the display behind them, target and clipped target, distances
  /// moved. In CV2_1 `prelut` includes the gray match, while `cmon` stands behind the two-table solution alone.
  std::optional<two_table_solution> two;

  /// The gray ramp: what to put into `display`. In CV1 it is the table that a device loads (drive to drive), in
  /// CV2_1 what the gray match adds before the pre-table, in CV2 the plain ramp. Zeros where the gray match was kept
  /// from it by `alpha` and `beta`.
  matrix gray;
  monitor display;       ///< what `gray` drives: the display as measured, or `two->cmon`
  gray_factors factors;  ///< what the wanted grays were multiplied by; empty without a gray match

  /// The row of `gray` (and of CV2_1's `prelut`) that is not a number, if there is one: see `gray_match`.
  std::optional<std::size_t> undefined_row;

  std::vector<finding> warnings;  ///< what is not to be trusted, in the order in which it was found
  double two_seconds = 0;         ///< CPU time of this process during the two-table solution
  double gray_seconds = 0;        ///< and during the gray match
};

/// Fits the display, solves in the mode that the settings name, and judges the result. The target tone curve is that
/// of `tone`, else the power law of `gamma`. `factors` correct the gray match where the display was measured again
/// behind its tables; they go without `wptemp` and `hwid`. Reads and writes nothing and keeps no state: several
/// threads may call it at once. Throws `fault::setting` or `fault::content`.
correction solve(const settings& set, const measurements& samples, const std::optional<tone_samples>& tone = {},
                 const gray_factors& factors = {});

}  // namespace corvantile
