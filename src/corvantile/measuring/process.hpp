#pragma once
// Other programs run as children: with the terminal in their hands, or with their output in ours.

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "corvantile/measuring/stop_signals.hpp"

namespace corvantile::measuring {

struct child {
  std::vector<std::string> argv;              ///< first the program: a path, or a name to find on PATH; no shell
  std::vector<std::string> environment = {};  ///< `NAME=value`, in place of what we have of that name
  std::chrono::milliseconds limit{0};         ///< how long it may take; 0: as long as it likes
  std::chrono::milliseconds grace{2000};      ///< from the request to end until it is killed
};

enum class ending {
  exited,       ///< by itself, with status `code`
  killed,       ///< by signal `code`, which was not ours
  not_found,    ///< there is no such program
  not_started,  ///< the system refused, with errno `code`
  timed_out,    ///< it took longer than its limit and was ended
  interrupted   ///< the user stopped us or it
};

struct child_result {
  ending how = ending::not_found;
  int code = 0;
  std::string out = {}, err = {};  ///< what it printed, 1 MiB of each at most; empty if it had the terminal
  bool ok() const { return how == ending::exited && code == 0; }
};

/// Runs a program that talks with the person at the terminal: its standard streams are ours. A Ctrl-C reaches both;
/// what it means is the child's to say, so this returns only when the child has ended. If it then ends with status 0,
/// the signal is forgotten: the person went on. Signals that were sent to us alone are passed on. Over its limit the
/// child, not its own children, gets SIGTERM, and SIGKILL after the grace.
child_result run_in_terminal(const child& c, stop_signals& stop);

/// Runs a program without a terminal: it reads nothing, and what it prints is kept. It has a process group of its
/// own. If it takes longer than its limit, the whole group gets SIGTERM, and SIGKILL after the grace; if the user
/// interrupts us, SIGINT and SIGKILL. When the program itself ends, what it left running in the background is not
/// waited for.
child_result run_captured(const child& c, stop_signals& stop);

/// What became of `c`, as one clause: "dispread ended with status 1: no instrument found". The last line that it
/// printed as an error is quoted.
std::string words_for(const child& c, const child_result& r);

/// The path of an executable file of that name in the folders of `path` (separated by colons), or of `name` itself
/// if it has a slash. Empty folders, which would mean the current one, are passed over.
std::optional<std::string> find_program(const std::string& name, std::string_view path);
/// The same with the environment's PATH.
std::optional<std::string> find_program(const std::string& name);

/// The last line of `text` that is not blank, without margins.
std::string_view last_line(std::string_view text);

}  // namespace corvantile::measuring
