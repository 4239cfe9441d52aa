#pragma once
// A chart shown and read by ArgyllCMS's dispread, in its own dialogue with the person at the terminal.

#include <chrono>
#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "corvantile/formats/chart.hpp"
#include "corvantile/measuring/outcome.hpp"
#include "corvantile/measuring/stop_signals.hpp"

namespace corvantile::measuring {

struct dispread_call {
  std::string program = "dispread";       ///< a path, or a name to find on PATH
  std::vector<std::string> options = {};  ///< such as {"-v", "-d", "1", "-y", "l"}
  std::string name;                       ///< of the chart and the readings, without `.ti1` and `.ti3`
  std::string date = {};                  ///< for the chart
  bool replace = false;                   ///< whether `NAME.ti3` may exist already
  std::chrono::milliseconds limit{0};     ///< 0: none, because a person is in the dialogue
};

struct dispread_result {
  report status = {};
  bool found = true;         ///< the program is there
  std::string file = {};     ///< what holds the readings; empty if there are none
  bool whole = false;        ///< dispread ended well, so the file has all it will ever have
  std::size_t readings = 0;  ///< usable rows in it
  std::string command = {};  ///< the words that were run, for people
};

/// Writes `NAME.ti1` and runs dispread on it. If all goes well `NAME.ti3` has the readings, and `words` says so if
/// some of them are missing. If it fails or is interrupted after writing a part, that part is kept as
/// `NAME.partial.ti3`. An older `NAME.ti3` comes back unless there is a whole new one.
///
/// Throws `fault::unwritable` if the chart cannot be written, or if `NAME.ti3` exists and may not be replaced.
dispread_result run_dispread(std::span<const chart_patch> chart, const dispread_call& call, stop_signals& stop);

}  // namespace corvantile::measuring
