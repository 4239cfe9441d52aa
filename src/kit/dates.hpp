#pragma once
// The date that files say they were made on.

#include <chrono>
#include <string>

namespace corvantile::kit {

/// Now, or what SOURCE_DATE_EPOCH (seconds since 1970) says, for files that are to come out the same again.
std::chrono::sys_seconds now();

/// As instruments' files spell it, in UTC: "Sat Nov 21 13:50:20 2026".
std::string date_text(std::chrono::sys_seconds at);

}  // namespace corvantile::kit
