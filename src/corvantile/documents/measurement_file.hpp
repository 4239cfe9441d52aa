#pragma once
// The measurement file: samples, and in its comment lines where they come from.
//
// Lines that begin with `;` come first, then a line of three integers (levels of a ramp, extra samples, version),
// then six numbers a sample. monitor/measurements.hpp says what they mean.

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "corvantile/monitor/measurements.hpp"
#include "corvantile/monitor/monitor.hpp"
#include "corvantile/utils/lut.hpp"

namespace corvantile {

/// Video-LUT curves, one per channel: drive 0..1 -> drive 0..1, with rising abscissae.
using calibration_curves = std::array<lut, 3>;

/// How far repeated readings of one patch lie apart.
struct repeat_spread {
  std::size_t n = 0;  ///< readings; fewer than two tell nothing
  double spread = 0;  ///< largest less smallest Y, as a fraction of their mean (for the dark: of the white)
  friend bool operator==(const repeat_spread&, const repeat_spread&) = default;
};

/// How the white moved while the chart was measured.
struct white_drift {
  double change = 0;                ///< of Y from the first white to the last, along the line of least squares
  std::size_t first = 0, last = 0;  ///< positions of these whites among the readings, counted from 1
  std::size_t of = 0;               ///< all readings
  friend bool operator==(const white_drift&, const white_drift&) = default;
};

/// What the repeats of a run tell; absent for a patch that was read once.
struct repeatability {
  std::optional<repeat_spread> white;
  std::optional<repeat_spread> dark;
  std::optional<repeat_spread> ramps;  ///< the worst patch of the four ramps with at least 1 % of the white's light
  std::optional<white_drift> drift;
  friend bool operator==(const repeatability&, const repeatability&) = default;
};

/// Everything that is known beside the samples. Empty or absent: not known.
struct provenance {
  std::string source;  ///< name of the file that was read
  std::string kind;    ///< of that file: "Argyll .ti3", "CSV", ...
  std::string instrument;
  std::string originator;
  std::string date;
  std::string display;
  std::size_t readings = 0;      ///< how many rows that file holds; 0: not known
  std::optional<bool> absolute;  ///< X, Y, Z in cd/m2, or relative
  std::string ramps;             ///< "measured" or "derived", with the reason in brackets
  repeatability repeated;
  std::optional<calibration_curves> calibration;  ///< in effect while measuring
  std::vector<std::string> notes;
  friend bool operator==(const provenance&, const provenance&) = default;
};

/// All that a measurement file says.
struct measurement_file {
  measurements samples;
  provenance known;
};

/// Reads the text of a measurement file; `name` names it in messages. A comment line that holds nothing known, or was
/// changed by hand beyond recognition, is passed over. Throws `fault::version` for a version that is neither 1 nor 2,
/// and `fault::content` if the content cannot give a result.
measurement_file parse_measurement_file(const std::string& name, std::string_view text);

/// The samples alone.
measurements parse_measurements(const std::string& name, std::string_view text);

/// The same for a file. Throws `fault::no_measurements` if it cannot be opened.
measurements load_measurements(const std::string& filename);

/// Whether the text begins as such a file: comments, then a line of three integers of which the last is a version.
bool is_measurement_file(std::string_view text);

/// A whole measurement file. Comment lines end before 1000 characters; control characters in their texts become
/// blanks; spreads have three digits; curves with different inputs are written at the inputs of all of them. Every
/// number of a sample has the fewest digits that read back as the same double.
std::string measurement_text(const measurements& m, const provenance& known);

// ---- Held ready: no job calls this ----

/// Reads the file and fits the model. 8 pieces if `numsegs` is absent: on purpose, `makemonitor` takes 5.
monitor loadmonitor(const std::string& filename, std::optional<int> numsegs = {}, double minslope = 0.0);

}  // namespace corvantile
