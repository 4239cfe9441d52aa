#pragma once
// The figures of a report, from a fitted monitor, its tables and what they were made for.

#include <array>
#include <functional>
#include <optional>
#include <vector>

#include "corvantile/formats/writers/writer.hpp"
#include "corvantile/job/correction.hpp"
#include "corvantile/job/settings.hpp"
#include "corvantile/matching/matching.hpp"
#include "corvantile/monitor/monitor.hpp"
#include "corvantile/monitor/synthetic_monitor.hpp"
#include "corvantile/readings/readings.hpp"
#include "corvantile/report/page.hpp"

namespace corvantile {

/// A correction as the report sees it. References are looked at during a call only.
struct report_source {
  const monitor& display;  ///< as measured, without a front end
  device_tables tables;    ///< as the device holds them, real entries
  int bits = 0;            ///< of the written entries; 0: reals

  vec2 white;                          ///< chromaticity x, y asked for in the grays
  std::optional<triangle> primaries;   ///< x, y of red, green, blue asked for; none: the display's own
  std::function<double(double)> tone;  ///< the curve asked for, drive 0..1 to 0..1, rising

  /// The gray match blends the dark into its target below this drive (its `alpha`); without it, the target has the
  /// dark throughout, as that of the two-table solution has.
  std::optional<double> dark_below{};

  /// What the wanted grays were multiplied by, so that the display is expected to show the model's divided by them.
  gray_factors factors{};

  double lumfrac = 1;  ///< the luminance asked for as a fraction of the brightest such white's
  /// Per ramp (gray, red, green, blue, yellow, magenta, cyan), what the program's verbose report gives; see
  /// `program_ramp_maxima`.
  std::optional<std::array<double, 7>> program_maxima{};
};

/// The same for a solved job. `result` must outlive it. A row that is not a number is taken as its neighbour.
report_source source_of(const correction& result, const settings& set);

/// Fills every figure that follows from the source, and the verdict's sentence. Left to the caller is what is known
/// elsewhere: `display`, `mode`, `target`, `unit`, `date`, the findings, noise, spread and ramps of `trust`, and
/// `remake`. Differences of the display before the correction are taken as if the target were as bright as it is.
report_data gather_report(const report_source& source);

/// Adds readings to the record: the measured curves and marks, all patches, the verdict and a diagnosis in words that
/// compares them with what the model predicts for the tables loaded once, not at all, and twice. The readings are
/// scaled so that their brightest full white (there should be one) is as bright as predicted.
void gather_measured(report_data& data, const report_source& source, const std::vector<reading>& readings);

/// The largest CIEDE2000 difference along each of the seven ramps, as the program's verbose report takes it: 200
/// samples of the display behind its front end against the target, reference white `syn_whitepoint`.
std::array<double, 7> program_ramp_maxima(const monitor& corrected, const synthetic_monitor& target);

}  // namespace corvantile
