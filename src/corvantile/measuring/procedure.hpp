#pragma once
// A procedure of named steps that goes on where it was ended, whatever ended it.
//
// Its record in the folder names the steps that are done, what they began from, and the checksums of what they left.
// A step counts as done only while all of that is as it was, and while the steps before it are done.

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "corvantile/measuring/outcome.hpp"

namespace corvantile::measuring {

struct step_result {
  report status = {};
  std::vector<std::string> files = {};  ///< what it left, relative to the folder
  bool decide = false;                  ///< a person must decide before it goes on; `words` say what
};

struct step {
  std::string name;        ///< unique in the procedure
  std::string about = {};  ///< for people: what it will do, one line
  /// What the step depends on besides the steps before it: options, in any words. If it changes, the step runs again.
  std::string inputs = {};
  /// Does it. What an earlier attempt left half done may lie in the folder.
  std::function<step_result()> run;
  /// Asks, when the record says that it is done, whether this still holds in the world outside the folder: what a
  /// program has loaded does not survive a restart. If not, it runs again; the steps behind it stay done if it leaves
  /// the same files. Empty: it holds.
  std::function<bool()> holds = {};
};

struct procedure_watch {
  std::function<void(const step&)> skipped = {};  ///< done before
  std::function<void(const step&)> begins = {};
  std::function<void(const step&, const step_result&)> ended = {};
};

struct procedure_result {
  report status = {};
  std::optional<std::string> stopped_at = {};  ///< the step that is not done; absent at the end
  bool decide = false;
};

/// Runs the steps that are not done, in order, and records each before the next begins. Stops at the first that
/// fails, is interrupted, or needs a decision: that one runs again next time. Exceptions of a step pass through.
///
/// `folder` exists; the record is `NAME.json` in it, and `NAME.lock` keeps a second run out. A record that cannot be
/// read, or that has other steps, counts as none. Throws `fault::unwritable` if the record cannot be written, or if
/// another run is at work in the folder.
procedure_result run_procedure(const std::string& folder, std::string_view name, const std::vector<step>& steps,
                               const procedure_watch& watch = {});

/// The names of the steps that are done, by the record and the files; nothing outside is asked.
std::vector<std::string> steps_done(const std::string& folder, std::string_view name, const std::vector<step>& steps);

}  // namespace corvantile::measuring
