#pragma once
// Numbers as people read them in a sentence.

#include <array>
#include <charconv>
#include <string>

namespace corvantile {

/// `v` with `digits` decimals, rounded from the exact value, the zero before the point kept: 0.50, -0.02, nan, inf.
inline std::string decimal(double v, int digits) {
  std::array<char, 400> buf{};  // sign, 309 digits, point, decimals
  auto* const end = std::to_chars(buf.data(), buf.data() + buf.size(), v, std::chars_format::fixed, digits).ptr;
  return {buf.data(), end};
}

/// The fewest digits that read back as the same double.
inline std::string shortest(double v) {
  std::array<char, 32> buf{};
  return {buf.data(), std::to_chars(buf.data(), buf.data() + buf.size(), v).ptr};
}

/// `v`, a fraction, in percent with `digits` decimals.
inline std::string percent(double v, int digits) { return decimal(100 * v, digits) + " %"; }

}  // namespace corvantile
