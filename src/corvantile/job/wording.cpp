#include "corvantile/job/wording.hpp"

#include <array>
#include <charconv>

namespace corvantile {

static std::string significant(double v, int digits) {
  std::array<char, 32> buf{};
  auto* const end = std::to_chars(buf.data(), buf.data() + buf.size(), v, std::chars_format::general, digits).ptr;
  return {buf.data(), end};
}

std::string short_number(double v) { return significant(v, 4); }

std::string percent(double ratio) { return significant(100 * ratio, 3) + " %"; }

std::string short_pair(const vec2& v) { return short_number(v[0]) + ", " + short_number(v[1]); }

std::string row_range(std::size_t first, std::size_t last) {
  if (first == last) return "row " + std::to_string(first);
  return "rows " + std::to_string(first) + " to " + std::to_string(last);
}

}  // namespace corvantile
