#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <fmt/format.h>
#include <optional>

#include "corvantile/report/svg.hpp"

namespace corvantile::svg {
namespace {

// Takes the code point at `i`, and moves `i` past it; std::nullopt for bytes that are not UTF-8.
std::optional<std::uint32_t> take_code_point(std::string_view s, std::size_t& i) {
  const auto byte = [&](std::size_t k) { return static_cast<std::uint32_t>(static_cast<unsigned char>(s[k])); };
  const std::uint32_t lead = byte(i++);
  const auto begins = [&](std::uint32_t from, std::uint32_t to) { return lead >= from && lead < to; };
  const std::size_t more = begins(0xF0, 0xF8) ? 3 : begins(0xE0, 0xF0) ? 2 : begins(0xC2, 0xE0) ? 1 : 0;
  if (more == 0) return std::nullopt;
  std::uint32_t code = lead & (0x3FU >> more);
  std::size_t end = i;
  for (; end < i + more; ++end) {
    if (end >= s.size() || (byte(end) & 0xC0U) != 0x80) return std::nullopt;
    code = code << 6U | (byte(end) & 0x3FU);
  }
  constexpr std::array<std::uint32_t, 4> least{0, 0x80, 0x800, 0x10000};
  if (code < least[more] || code > 0x10FFFF || (code >= 0xD800 && code < 0xE000)) return std::nullopt;
  i = end;
  return code;
}

std::string_view entity(char c) {
  switch (c) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case '\'':
      return "&#39;";
    default:
      return {};
  }
}

}  // namespace

std::string escape(std::string_view utf8) {
  std::string out;
  for (std::size_t i = 0; i < utf8.size();) {
    const char c = utf8[i];
    if (static_cast<unsigned char>(c) >= 0x80) {
      out += fmt::format("&#x{:x};", take_code_point(utf8, i).value_or(0xFFFD));
      continue;
    }
    ++i;
    if (const std::string_view e = entity(c); !e.empty()) {
      out += e;
    } else {
      out += static_cast<unsigned char>(c) < 0x20 || c == 0x7F ? ' ' : c;
    }
  }
  return out;
}

std::string number(double v, int decimals) {
  if (!std::isfinite(v)) return "-";
  std::string s = fmt::format("{:.{}f}", v, decimals);
  if (s.find('.') != std::string::npos) {
    s.erase(s.find_last_not_of('0') + 1);
    if (s.ends_with('.')) s.pop_back();
  }
  return s == "-0" ? "0" : s;
}

}  // namespace corvantile::svg
