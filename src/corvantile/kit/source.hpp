#pragma once
// From any file with readings to measurements: the first step of most verbs.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "corvantile/documents/measurement_file.hpp"
#include "corvantile/formats/detect.hpp"
#include "corvantile/readings/ramps.hpp"
#include "corvantile/readings/readings.hpp"

namespace corvantile::kit {

/// Where readings come from, and how to read them.
struct source_options {
  std::string source;               ///< name of a file, or "-"
  std::string second;               ///< the other HCFR sheet; empty: none
  std::optional<source_kind> from;  ///< absent: found out from the content
  std::string layout;               ///< of a table without a header
  ramp_source ramps = ramp_source::automatic;
};

/// The readings of a source, without a choice of ramps.
readings read_source(const source_options& o);

/// The readings of a source, and the measurements made from them.
struct import_result {
  readings all;
  ramp_choice choice;
  measurement_file file;  ///< with the samples of `choice`
  std::string text;       ///< of that file
};

/// Reads a source and chooses its ramps. Throws `fault::content` with what to do: if ramps are missing, which chart
/// to measure.
import_result import_source(const source_options& o);

/// The measurements of a source: our own file as it is, any other as `import_source` makes them.
measurement_file measurements_of(const source_options& o);

/// Reads the text of a measurement file. If it is the file of an instrument's program, the message says to import it.
measurement_file parse_measurements_or_advise(const std::string& name, std::string_view text);

/// A few lines for people: what was read, which ramps were chosen, and why.
std::vector<std::string> summary_of(const import_result& in);

}  // namespace corvantile::kit
