#include "corvantile/utils/fixed_point.hpp"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>

namespace corvantile {
#if defined(__SIZEOF_INT128__)
namespace {

__extension__ using wide = unsigned __int128;

constexpr int most_digits = 18;

constexpr std::array<std::uint64_t, most_digits + 1> list_powers_of_ten() {
  std::array<std::uint64_t, most_digits + 1> powers{1};
  for (std::size_t i = 1; i < powers.size(); ++i) powers[i] = 10 * powers[i - 1];
  return powers;
}
constexpr auto powers_of_ten = list_powers_of_ten();

// A number in units of its last decimal, if it fits in 64 bits.
struct rounded {
  bool fits = false;
  std::uint64_t units = 0;
};

// The magnitude of v is m 2^-shift with m below 2^53, and 10^18 is below 2^60, so m times the units of one fits in
// 128 bits.
rounded round_to_units(double v, std::uint64_t units_of_one) {
  const auto bits = std::bit_cast<std::uint64_t>(v);
  const auto exponent = static_cast<int>(bits >> 52 & 0x7ff);
  const std::uint64_t fraction = bits & ((std::uint64_t{1} << 52) - 1);
  const std::uint64_t m = exponent > 0 ? fraction | std::uint64_t{1} << 52 : fraction;
  const int shift = exponent > 0 ? 1075 - exponent : 1074;
  if (shift <= 0) return {};
  if (shift > 127) return {.fits = true};  // less than half a unit
  const wide product = wide{m} * units_of_one;
  wide units = product >> shift;
  const wide rest = product - (units << shift);
  const wide half = wide{1} << (shift - 1);
  if (rest > half || (rest == half && (units & 1) != 0)) ++units;
  return {.fits = units >> 64 == 0, .units = static_cast<std::uint64_t>(units)};
}

}  // namespace

char* write_fixed(char* begin, char* end, double v, int digits) {
  if (digits < 1 || digits > most_digits) return std::to_chars(begin, end, v, std::chars_format::fixed, digits).ptr;
  const std::uint64_t units_of_one = powers_of_ten[static_cast<std::size_t>(digits)];
  const rounded r = round_to_units(v, units_of_one);
  if (!r.fits) return std::to_chars(begin, end, v, std::chars_format::fixed, digits).ptr;

  if (std::signbit(v)) *begin++ = '-';
  char* const point = std::to_chars(begin, end, r.units / units_of_one).ptr;
  char* const after = std::to_chars(point, end, units_of_one + r.units % units_of_one).ptr;  // 1, then every decimal
  *point = '.';
  return after;
}
#else
char* write_fixed(char* begin, char* end, double v, int digits) {
  return std::to_chars(begin, end, v, std::chars_format::fixed, digits).ptr;
}
#endif

}  // namespace corvantile
