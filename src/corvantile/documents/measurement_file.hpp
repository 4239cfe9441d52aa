#pragma once
// The measurement file: the samples, and comment lines that say where they come from.
//
// The file begins with comment lines (`;`). Then come a line of three integers (levels of a ramp, extra samples,
// version) and six numbers for each sample; monitor/measurements.hpp says what they mean.

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

/// Video-LUT curves, one per channel: drive 0..1 to drive 0..1, with rising abscissae.
using calibration_curves = std::array<lut, 3>;

/// How far repeated readings of one patch are apart.
struct repeat_spread {
  std::size_t n = 0;  ///< readings; the spread needs at least two
  double spread = 0;  ///< largest Y minus smallest, as a fraction of their mean (for the dark: of the white)
  friend bool operator==(const repeat_spread&, const repeat_spread&) = default;
};

/// How the white drifted while the chart was measured.
struct white_drift {
  double change = 0;                ///< in Y, as a fraction, from first white to last along the least-squares line
  std::size_t first = 0, last = 0;  ///< positions of these two whites among the readings, counted from 1
  std::size_t of = 0;               ///< number of all readings
  friend bool operator==(const white_drift&, const white_drift&) = default;
};

/// How well readings repeated. Absent: the patch was read only once.
struct repeatability {
  std::optional<repeat_spread> white;
  std::optional<repeat_spread> dark;
  std::optional<repeat_spread> ramps;  ///< worst patch of the four ramps with at least 1 % of the white's light
  std::optional<white_drift> drift;
  friend bool operator==(const repeatability&, const repeatability&) = default;
};

/// What is known about the measurement apart from the samples. Empty or absent: not known.
struct provenance {
  std::string source;  ///< name of the file that was imported
  std::string kind;    ///< its format: "Argyll .ti3", "CSV", ...
  std::string instrument;
  std::string originator;
  std::string date;
  std::string display;
  std::size_t readings = 0;      ///< rows in that file; 0: not known
  std::optional<bool> absolute;  ///< true: X, Y, Z in cd/m2; false: relative
  std::string ramps;             ///< "measured" or "derived", with the reason in brackets
  repeatability repeated;
  std::optional<calibration_curves> calibration;  ///< in effect while measuring
  std::vector<std::string> notes;
  friend bool operator==(const provenance&, const provenance&) = default;
};

struct measurement_file {
  measurements samples;
  provenance known;
};

/// Reads the text of a measurement file; `name` is the file's name for messages. Skips comment lines that it cannot
/// read. Throws `fault::version` if the version is not 1 or 2, and `fault::content` if the content gives no result.
measurement_file parse_measurement_file(const std::string& name, std::string_view text);

/// Reads only the samples.
measurements parse_measurements(const std::string& name, std::string_view text);

/// Reads the samples of a file. Throws `fault::no_measurements` if it cannot be opened.
measurements load_measurements(const std::string& filename);

/// Whether the text begins like a measurement file: comments, then three integers, the last one a known version.
bool is_measurement_file(std::string_view text);

/// The text of a measurement file. Comment lines stay below 1000 characters, and control characters in them become
/// blanks. Spreads have three digits. Calibration curves with different inputs are written at the inputs of all
/// three. The numbers of a sample have the fewest digits that read back as the same double.
std::string measurement_text(const measurements& m, const provenance& known);

// ---- Held ready: no job calls this ----

/// Reads the file and fits the model. Without `numsegs` it takes 8 pieces, not the 5 of `makemonitor`: on purpose.
monitor loadmonitor(const std::string& filename, std::optional<int> numsegs = {}, double minslope = 0.0);

}  // namespace corvantile
