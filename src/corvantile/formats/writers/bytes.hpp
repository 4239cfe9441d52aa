#pragma once
// Integers as bytes, in either order.

#include <cmath>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>

namespace corvantile {

template <std::unsigned_integral T>
void append_big_endian(std::string& out, T v) {
  for (std::size_t i = sizeof(T); i-- > 0;) out += static_cast<char>((v >> (8 * i)) & 0xFFU);
}

template <std::unsigned_integral T>
void append_little_endian(std::string& out, T v) {
  for (std::size_t i = 0; i < sizeof(T); ++i) out += static_cast<char>((v >> (8 * i)) & 0xFFU);
}

/// The s15Fixed16Number of ICC profiles, for values from -32768 to below 32768.
inline void append_s15fixed16(std::string& out, double v) {
  append_big_endian(out, static_cast<std::uint32_t>(static_cast<std::int32_t>(std::round(v * 65536))));
}

}  // namespace corvantile
