#pragma once
// Any file with readings as measurements: what `import`, `check`, `make` and `verify` begin with.

#include <string>
#include <vector>

#include "corvantile/formats/detect.hpp"
#include "corvantile/readings/provenance.hpp"
#include "corvantile/readings/ramps.hpp"

namespace corvantile::kit {

/// Where readings come from and how they are to be taken, as the command line says it.
struct source_options {
  std::string source;
  std::string second;  ///< the sheet that goes with it; empty for none
  std::string from;    ///< the kind; empty: told from the content
  std::string layout;  ///< of a table without a header
  std::string ramps = "auto";
};

struct imported {
  readings all;
  ramp_choice choice;
  provenance known;
  std::string text;  ///< the measurement file
};

/// What the source holds, without a decision about ramps.
readings read_source(const source_options& o);

/// Reads and decides. Throws `fault::content` with what to do; for ramps that are missing, that is which chart to
/// measure.
imported import_measurements(const source_options& o);

/// The text of a measurement file as `parse_measurements` takes it; for the file of an instrument's program the
/// message names the verb that makes one of it.
measurements measurements_in(const std::string& name, const std::string& text);

/// What was taken and why, in a few lines for people.
std::vector<std::string> summary_of(const imported& in);

}  // namespace corvantile::kit
