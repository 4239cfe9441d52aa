#pragma once
// Real entries to integer codes.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace corvantile {

/// Turns 0..1 into codes 0..2^bits - 1 (1 to 32 bits), halves away from zero, and counts what it had to clamp.
struct quantiser {
  explicit quantiser(unsigned bits) : top(std::ldexp(1.0, static_cast<int>(bits)) - 1) {}

  std::uint64_t operator()(double v) {
    const double code = std::round(v * top);
    if (code < 0 || code > top) ++clamped;
    return static_cast<std::uint64_t>(std::clamp(code, 0.0, top));
  }

  double top;
  std::size_t clamped = 0;
};

/// The same for signed fixed-point numbers: `bits` in all, sign included, `fraction` of them after the point.
struct fixed_point {
  std::int64_t operator()(double v) {
    const double most = std::ldexp(1.0, static_cast<int>(bits) - 1);
    const double scaled = std::round(std::ldexp(v, static_cast<int>(fraction)));
    if (scaled < -most || scaled > most - 1) ++clamped;
    return static_cast<std::int64_t>(std::clamp(scaled, -most, most - 1));
  }

  unsigned bits;
  unsigned fraction;
  std::size_t clamped = 0;
};

}  // namespace corvantile
