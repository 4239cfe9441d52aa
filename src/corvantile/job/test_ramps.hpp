#pragma once
// The seven ramps along which displays are compared.

#include <array>

#include "corvantile/numerics/matrix.hpp"

namespace corvantile {

struct test_ramp {
  const char* name;
  vec3 on;  ///< 1 for each channel that follows the ramp, else 0
};

inline constexpr std::array<test_ramp, 7> test_ramps{{{"gray", {{1, 1, 1}}},
                                                      {"red", {{1, 0, 0}}},
                                                      {"green", {{0, 1, 0}}},
                                                      {"blue", {{0, 0, 1}}},
                                                      {"yellow", {{1, 1, 0}}},
                                                      {"magenta", {{1, 0, 1}}},
                                                      {"cyan", {{0, 1, 1}}}}};

}  // namespace corvantile
