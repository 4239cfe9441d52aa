#pragma once
// Numbers in warnings, as short as people read them.

#include <cstddef>
#include <string>

#include "corvantile/numerics/matrix.hpp"

namespace corvantile {

/// Four significant digits: "0.3127", "1500", "1.2e-05".
std::string short_number(double v);

/// A ratio as "12.3 %".
std::string percent(double ratio);

/// "0.3127, 0.329".
std::string short_pair(const vec2& v);

/// Rows `first` to `last`: "row 7" or "rows 7 to 9".
std::string row_range(std::size_t first, std::size_t last);

inline constexpr const char* channel_name[] = {"red", "green", "blue"};

}  // namespace corvantile
