#pragma once
// How a step ended that depends on people, cables and other programs.

#include <string>

namespace corvantile::measuring {

enum class outcome {
  done,
  failed,      ///< something outside went wrong, and a person can mend it
  interrupted  ///< the user asked for the end: Ctrl-C, SIGTERM, SIGHUP
};

/// `words` are for people: one clause in lower case without a full stop; empty if there is nothing to say.
struct report {
  outcome how = outcome::done;
  std::string words = {};
  bool ok() const { return how == outcome::done; }
};

}  // namespace corvantile::measuring
