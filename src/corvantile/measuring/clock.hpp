#pragma once
// Time limits for poll().

#include <algorithm>
#include <chrono>
#include <optional>

namespace corvantile::measuring {

using steady = std::chrono::steady_clock;
using std::chrono::milliseconds;

/// Milliseconds until `end`, rounded up, for poll(): 0 if it has passed, -1 (for ever) if there is none.
inline int poll_time(std::optional<steady::time_point> end) {
  constexpr long long longest = 60000;  // the caller looks again
  if (!end) return -1;
  const auto left = std::chrono::ceil<milliseconds>(*end - steady::now()).count();
  return static_cast<int>(std::clamp<long long>(left, 0, longest));
}

}  // namespace corvantile::measuring
