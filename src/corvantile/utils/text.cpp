#include "corvantile/utils/text.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

#include "corvantile/utils/fixed_point.hpp"

namespace corvantile {
namespace {

constexpr std::size_t longest_fixed = 1500;  // sign, 309 digits, point, and all 1074 decimals that a double can have

void append_right(std::string& out, std::string_view s, std::size_t width) {
  if (width > 0 && s.size() > width) {
    out.append(width, '*');
  } else {
    if (s.size() < width) out.append(width - s.size(), ' ');
    out.append(s);
  }
}

void append_not_finite(std::string& out, double v, std::size_t width) {
  const bool negative = std::isinf(v) && v < 0;
  const std::string_view shorter = std::isnan(v) ? "NaN" : negative ? "-Inf" : "Inf";
  const std::string_view longer = std::isnan(v) ? "NaN" : negative ? "-Infinity" : "Infinity";
  append_right(out, width >= longer.size() ? longer : shorter, width);
}

// Infinity or zero, with its sign, for a decimal number too large or too small for a double. The decimal place of its
// first non-zero digit decides.
double beyond_range(std::string_view s) {
  const bool negative = s.starts_with('-');
  const std::size_t e = s.find_first_of("eE");
  std::string_view mantissa = s.substr(0, e);
  if (negative) mantissa.remove_prefix(1);
  const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
  const std::size_t first = mantissa.find_first_of("123456789");
  const double place = static_cast<double>(point) - static_cast<double>(first);
  double exponent = 0;
  if (e != std::string_view::npos) {
    for (const char c : s.substr(e + 1))
      if (c >= '0' && c <= '9') exponent = exponent * 10 + (c - '0');
    if (s[e + 1] == '-') exponent = -exponent;
  }
  const double v = place + exponent > 0 ? std::numeric_limits<double>::infinity() : 0.0;
  return negative ? -v : v;
}

}  // namespace

void append_fixed(std::string& out, double v, std::size_t width, int digits) {
  if (!std::isfinite(v)) return append_not_finite(out, v, width);
  std::array<char, longest_fixed> buf;
  char* begin = buf.data();
  char* end = write_fixed(begin, begin + buf.size() - 1, v, digits);
  if (digits == 0) *end++ = '.';
  const std::size_t sign = *begin == '-' ? 1 : 0;
  if (digits > 0 && static_cast<std::size_t>(end - begin) > width && begin[sign] == '0') {
    begin[sign] = '-';  // drops the zero; a sign moves next to the point
    ++begin;
  }
  append_right(out, {begin, end}, width);
}

std::string fixed_field(double v, std::size_t width, int digits) {
  std::string s;
  append_fixed(s, v, width, digits);
  return s;
}

std::string general_field(double v, std::size_t width, int digits) {
  std::string s;
  if (!std::isfinite(v)) {
    append_not_finite(s, v, width);
    return s;
  }
  // d.ddde+xx gives the digits, and the decimal exponent after rounding.
  std::array<char, 64> buf;
  const char* end =
      std::to_chars(buf.data(), buf.data() + buf.size(), std::abs(v), std::chars_format::scientific, digits - 1).ptr;
  const std::string_view sci(buf.data(), end);
  const std::size_t e = sci.find('e');
  const int exponent = v == 0 ? 1 : static_cast<int>(*parse_integer(sci.substr(e + 1))) + 1;  // for 0.ddd form

  if (exponent >= 0 && exponent <= digits) {
    append_fixed(s, v, width - 4, digits - exponent);
    if (s.starts_with('*')) return std::string(width, '*');
    return s + "    ";
  }
  std::string body = std::signbit(v) ? "-0." : "0.";
  body += sci[0];
  if (digits > 1) body += sci.substr(2, e - 2);
  const std::string power = integer_field(std::abs(exponent));
  if (power.size() < 3) body += 'E';  // three digits of exponent take the letter's place
  body += exponent < 0 ? '-' : '+';
  if (power.size() < 2) body += '0';
  body += power;
  if (body.size() > width) body.erase(body.find('0'), 1);
  append_right(s, body, width);
  return s;
}

void append_integer(std::string& out, std::int64_t v, std::size_t width) {
  std::array<char, 24> buf;
  const char* end = std::to_chars(buf.data(), buf.data() + buf.size(), v).ptr;
  append_right(out, {buf.data(), end}, width);
}

std::string integer_field(std::int64_t v, std::size_t width) {
  std::string s;
  append_integer(s, v, width);
  return s;
}

std::string free_format(double v) {
  std::string s(1, ' ');
  if (std::isfinite(v)) {
    std::array<char, 32> buf;
    s.append(buf.data(), std::to_chars(buf.data(), buf.data() + buf.size(), v).ptr);
  } else {
    append_not_finite(s, v, std::isnan(v) ? 3 : v < 0 ? 9 : 8);
  }
  return s;
}

std::string_view cut(std::string_view s, std::size_t length) { return s.substr(0, length); }

std::string_view trim(std::string_view s) { return s.substr(0, s.find_last_not_of(' ') + 1); }

std::string in_quotes(std::string_view s) {
  std::string q = "'";
  for (const char c : cut(s, 40)) q += static_cast<unsigned char>(c) < 0x20 || c == 0x7f ? '?' : c;
  return q + (s.size() > 40 ? "...'" : "'");
}

std::optional<double> parse_real(std::string_view s) {
  if (s.starts_with('+') && !s.starts_with("+-")) s.remove_prefix(1);
  double v = 0;
  auto [stop, error] = std::from_chars(s.data(), s.data() + s.size(), v);
  if (error == std::errc::invalid_argument) return std::nullopt;
  if (stop == s.data() + s.size()) return error == std::errc{} ? v : beyond_range(s);

  // Exponents with a letter other than e, or with none: respell the number with e. Any usual number fits on the
  // stack.
  constexpr std::string_view letters = "dDqQ";
  const auto mantissa = static_cast<std::size_t>(stop - s.data());
  const bool letter = letters.find(*stop) != std::string_view::npos;
  if (!letter && *stop != '+' && *stop != '-') return std::nullopt;
  const std::string_view power = s.substr(mantissa + (letter ? 1 : 0));
  std::array<char, 128> room;
  std::string large;
  char* spelled = room.data();
  if (s.size() + 1 > room.size()) {
    large.resize(s.size() + 1);
    spelled = large.data();
  }
  char* end = std::copy_n(s.data(), mantissa, spelled);
  *end++ = 'e';
  end = std::copy(power.begin(), power.end(), end);
  const auto again = std::from_chars(spelled, end, v);
  if (again.ptr != end) return std::nullopt;
  return again.ec == std::errc{} ? v : beyond_range({spelled, end});
}

std::optional<std::int64_t> parse_integer(std::string_view s) {
  if (s.starts_with('+') && !s.starts_with("+-")) s.remove_prefix(1);
  std::int64_t v = 0;
  const auto [stop, error] = std::from_chars(s.data(), s.data() + s.size(), v);
  if (error != std::errc{} || stop != s.data() + s.size()) return std::nullopt;
  return v;
}

std::string_view without_byte_order_mark(std::string_view text) {
  return text.starts_with("\xEF\xBB\xBF") ? text.substr(3) : text;
}

std::string printable(std::string_view s) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string shown;
  for (const char c : s) {
    const auto code = static_cast<unsigned char>(c);
    if (c == '\n') {
      shown += "\\n";
    } else if (code < 0x20 || code == 0x7f) {
      shown.append("\\x").append(1, digits[code >> 4U]).append(1, digits[code & 0xfU]);
    } else {
      shown += c;
    }
  }
  return shown;
}

static std::string significant(double v, int digits) {
  std::array<char, 32> buf;
  return {buf.data(), std::to_chars(buf.data(), buf.data() + buf.size(), v, std::chars_format::general, digits).ptr};
}

std::string shortest(double v) { return free_format(v).substr(1); }

std::string short_number(double v) { return significant(v, 4); }

std::string short_percent(double ratio) { return significant(100 * ratio, 3) + " %"; }

std::string short_pair(double a, double b) { return short_number(a) + ", " + short_number(b); }

std::string row_range(std::size_t first, std::size_t last) {
  if (first == last) return "row " + std::to_string(first);
  return "rows " + std::to_string(first) + " to " + std::to_string(last);
}

}  // namespace corvantile
