#pragma once
// A correction put where it belongs, by the program that owns the place; and whether it is there.
//
// We touch no device and no interface of the kernel: programs that other people keep do that.

#include <span>
#include <string>
#include <vector>

#include "corvantile/measuring/outcome.hpp"
#include "corvantile/measuring/session.hpp"

namespace corvantile::measuring {

struct load_command {
  std::vector<std::string> argv;
  bool may_fail = false;  ///< what it does may have been done before
  /// If set, the value that it prints behind this label stands for `{kept}` in the commands that follow.
  std::string keep = {};
};

/// What loading would do. Nothing has happened yet, except that programs were asked.
struct load_plan {
  loader by = loader::nobody;
  std::string file = {};      ///< what is loaded
  std::string where = {};     ///< the place, as a noun: "the video table of display 1"
  std::string replaces = {};  ///< one sentence: what goes away
  std::vector<load_command> load = {};
  std::vector<load_command> undo = {};  ///< empty if no command brings back what was there
  std::string undo_words = {};          ///< one sentence: what `undo` does, or what to do instead
  /// If nobody can load it: what to do by hand, a line each, in the exact words.
  std::vector<std::string> by_hand = {};
};

load_plan plan_loading(const loadable& what, const session& s, const load_options& o, stop_signals& stop);

/// The command as one would type it into a shell.
std::string shell_words(const load_command& c);

/// Runs the commands one by one and stops at the first that fails.
report run_commands(std::span<const load_command> commands, const load_options& o, stop_signals& stop);

enum class presence { loaded, not_loaded, unknown };

/// `words` say who was asked and what it said, or why nobody can know.
struct load_status {
  presence is = presence::unknown;
  std::string words;
};

/// Asks whether the correction is in force: dispwin reads the video card back, colord tells the profile of a display.
load_status ask_status(const loadable& what, const session& s, const load_options& o, stop_signals& stop);

}  // namespace corvantile::measuring
