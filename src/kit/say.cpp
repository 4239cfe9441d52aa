#include <iostream>

#include "kit/verbs.hpp"

namespace corvantile::kit {

void say(const common_options& o, const std::string& line) {
  if (!o.quiet) std::cerr << line << '\n';
}

}  // namespace corvantile::kit
