#pragma once
// Any file with readings as measurements: what most verbs begin with.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "corvantile/documents/measurement_file.hpp"
#include "corvantile/formats/detect.hpp"
#include "corvantile/readings/ramps.hpp"
#include "corvantile/readings/readings.hpp"

namespace corvantile::kit {

/// Where readings come from and how to take them, as the command line says it.
struct source_options {
  std::string source;               ///< a file's name, or "-"
  std::string second;               ///< the other HCFR sheet; empty for none
  std::optional<source_kind> from;  ///< absent: the content tells
  std::string layout;               ///< of a table without a header
  ramp_source ramps = ramp_source::automatic;
};

/// What the source holds, without a decision about ramps.
readings read_source(const source_options& o);

/// A source, and the measurements made of it.
struct import_result {
  readings all;
  ramp_choice choice;
  measurement_file file;  ///< the samples of `choice`, and what is known about them
  std::string text;       ///< of that file
};

/// Reads and decides. Throws `fault::content` with what to do; if ramps are missing, that names the chart to measure.
import_result import_source(const source_options& o);

/// Our own measurement file as it stands, anything else as `import_source` would make it.
measurement_file measurements_of(const source_options& o);

/// Reads the text of a measurement file. For the file of an instrument's program the failure names the verb that
/// makes one of it.
measurement_file parse_measurements_or_advise(const std::string& name, std::string_view text);

/// What was taken and why, in a few lines for people.
std::vector<std::string> summary_of(const import_result& in);

}  // namespace corvantile::kit
