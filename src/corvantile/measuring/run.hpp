#pragma once
// A measuring run: patches shown and read one after the other, each reading on disk before the next patch.

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "corvantile/formats/chart.hpp"
#include "corvantile/measuring/instrument.hpp"
#include "corvantile/measuring/journal.hpp"
#include "corvantile/measuring/outcome.hpp"
#include "corvantile/measuring/rereading.hpp"
#include "corvantile/measuring/stop_signals.hpp"

namespace corvantile::measuring {

/// One patch as the run leaves it.
struct measured_patch {
  vec3 drive;             ///< 0 to 1
  vec3 xyz;               ///< cd/m2, `median_of` its readings
  std::size_t taken = 1;  ///< how many readings
  std::string why;        ///< why there was more than one; else empty
  friend bool operator==(const measured_patch&, const measured_patch&) = default;
};

/// What shows the patches.
struct screen {
  std::function<report(const vec3& drive)> show;
  /// Whether the last patch is still on the screen; empty if nothing can take it away.
  std::function<bool()> still_shown = {};
};

struct run_options {
  std::chrono::milliseconds settle{500};  ///< from showing a patch to reading it
  std::optional<vec3> between = {};       ///< a drive shown between two patches, usually a gray
  std::chrono::milliseconds between_time{300};
  reread_rule rule = {};
};

/// After each patch.
struct progress {
  std::size_t done, of;         ///< patches, with those of an earlier run
  double seconds_left;          ///< by the time that the patches of this run took; 0 after the last
  std::optional<double> drift;  ///< of the white's Y from the first white to the last, in percent
  const measured_patch& last;
};

/// Everything that a run asks of others. All but `show` and `read` may be empty.
struct run_parts {
  screen shown_by;
  std::function<instrument_reading()> read;
  /// X, Y, Z that a model of the patches so far expects, in cd/m2; nothing if it cannot tell yet. Not asked about
  /// drives that were measured before: those readings tell.
  std::function<std::optional<vec3>(const vec3& drive, std::span<const measured_patch> so_far)> expect = {};
  std::function<void(const progress&)> tell = {};
};

/// Measures every patch of `chart` that `so_far` has not finished, in the order given, into `into` and `so_far`.
/// `so_far` is what `into` held when it was opened. A command that fails, or prints nothing useful, is tried once
/// more. If the screen loses the patch while it is read, it is shown and read again.
///
/// Throws `fault::unwritable` if a reading cannot be kept, `fault::content` if `so_far` is of another chart.
report measure(std::span<const chart_patch> chart, const run_parts& parts, const run_options& options, journal& into,
               journal_content& so_far, stop_signals& stop);

/// The finished patches, in the order of the chart.
std::vector<measured_patch> patches_of(const journal_content& content);

/// The chart with its patches between two whites in an order that `seed` chooses. White and black stay where they
/// come, so that they show drift. 0: as it is.
std::vector<chart_patch> reordered(std::span<const chart_patch> chart, std::uint64_t seed);

struct run_description {
  std::string date;        ///< when it began
  std::string instrument;  ///< the command
  std::string shown_by;    ///< such as "Resolve protocol, window 10 %"
  std::string display;     ///< its name; may be empty
};

/// How a journal of the run begins. Its fact `chart` names drives and order, and must match on a resume.
std::vector<fact> facts_of(std::span<const chart_patch> chart, const run_description& about);
inline constexpr std::string_view chart_fact = "chart";

/// The finished patches as a .ti3 file: drives in percent, X, Y, Z in cd/m2, a column with the number of readings,
/// and in comments what else the journal tells, with every patch that was read again and why.
std::string readings_file(const journal_content& content);

}  // namespace corvantile::measuring
