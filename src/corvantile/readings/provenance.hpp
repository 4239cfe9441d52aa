#pragma once
// Where measurements come from, kept in the comment lines of their file: what the rows alone cannot tell.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "corvantile/monitor/monitor.hpp"
#include "corvantile/readings/ramps.hpp"

namespace corvantile {

/// Everything that is known beside the samples. Empty or absent: not known.
struct provenance {
  std::string source;  ///< name of the file that was read
  std::string kind;    ///< of that file, as `readings::kind`
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

/// What `all` and the choice made from them tell.
provenance provenance_of(const readings& all, const ramp_choice& choice);

/// Comment lines that hold `p`: each begins with `; `, ends with a line end and is shorter than 1000 characters.
/// Control characters of the texts become blanks. Spreads are written with three digits, curves exactly; curves with
/// different inputs are written at the inputs of all of them.
std::string provenance_comment(const provenance& p);

/// Reads back what `provenance_comment` wrote from the comment lines that a measurement file begins with. Other
/// comment lines are passed over, and a line that was changed by hand beyond recognition counts as absent.
provenance parse_provenance(std::string_view text);

/// A whole measurement file: the comment lines, the header, then one sample a line, every number in the fewest digits
/// that read back as the same double.
std::string measurement_text(const measurements& m, std::string_view comment);

}  // namespace corvantile
