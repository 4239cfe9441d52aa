#pragma once
// Ctrl-C while an instrument is at work: noted, and acted on between two steps.

#include <chrono>
#include <csignal>
#include <optional>

#include "corvantile/utils/temporary_file.hpp"

namespace corvantile::measuring {

/// While one exists, SIGINT, SIGTERM and SIGHUP do not end the program. Everything here that waits looks for them,
/// ends what it started, and returns. A signal that was ignored before stays ignored.
///
/// It holds for the thread that made it and for threads that start later: make it before these, and make only one.
/// When it ends, the signals act as they did before; those that were noted are spent.
class stop_signals {
 public:
  stop_signals();
  stop_signals(const stop_signals&) = delete;
  stop_signals& operator=(const stop_signals&) = delete;
  ~stop_signals();

  struct arrival {
    int signal;
    bool by_key;  ///< from the terminal, which sends it to every program in the foreground
  };
  /// The next signal that came and was not given yet.
  std::optional<arrival> next();

  /// Whether any has come so far.
  bool raised();
  /// The first that came; 0 if none did.
  int first() const { return first_; }
  /// As if none had come so far.
  void forget() { first_ = 0; }

  /// Waits for that long. False if a signal came before or meanwhile: the wait then ends at once.
  bool pause(std::chrono::milliseconds how_long);

  /// Readable while a signal waits: for poll().
  int file() const { return file_.get(); }
  /// The signals that were blocked before, as children are to have them.
  const sigset_t& before() const { return before_; }

 private:
  sigset_t watched_{};
  sigset_t before_{};
  descriptor file_;
  int first_ = 0;
};

}  // namespace corvantile::measuring
