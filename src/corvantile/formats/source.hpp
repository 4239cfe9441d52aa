#pragma once
// A file that has been read into memory.

#include <string>

namespace corvantile {

struct source {
  std::string name;  ///< for messages
  std::string text;
};

}  // namespace corvantile
