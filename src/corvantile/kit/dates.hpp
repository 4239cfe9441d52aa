#pragma once
// The date that files say they were made on.

#include <chrono>

namespace corvantile::kit {

/// Now, or what SOURCE_DATE_EPOCH (seconds since 1970) says, for files that are to come out the same again.
std::chrono::sys_seconds now();

}  // namespace corvantile::kit
