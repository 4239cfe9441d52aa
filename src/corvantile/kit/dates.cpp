#include "corvantile/kit/dates.hpp"

#include <cstdlib>

#include "corvantile/utils/text.hpp"

namespace corvantile::kit {

std::chrono::sys_seconds now() {
  if (const char* epoch = std::getenv("SOURCE_DATE_EPOCH"); epoch != nullptr) {
    if (const auto seconds = parse_integer(epoch)) return std::chrono::sys_seconds(std::chrono::seconds(*seconds));
  }
  return std::chrono::time_point_cast<std::chrono::seconds>(std::chrono::system_clock::now());
}

}  // namespace corvantile::kit
