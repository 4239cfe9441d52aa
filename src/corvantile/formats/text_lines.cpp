#include "corvantile/formats/text_lines.hpp"

#include <algorithm>
#include <charconv>
#include <fmt/core.h>
#include <limits>

#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {
namespace {

constexpr bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\f' || c == '\v'; }

constexpr char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// The letters of Latin-1 from 0xC0 on without their accents.
constexpr std::string_view bare_letters = "AAAAAAACEEEEIIIIDNOOOOOxOUUUUYPsaaaaaaaceeeeiiiidnooooo?ouuuuypy";

// Bytes of the UTF-8 character at the start of `s`; 1 if it is not UTF-8.
std::size_t utf8_length(std::string_view s) {
  const auto first = static_cast<unsigned char>(s[0]);
  const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : first >= 0xC2 ? 2 : 1;
  if (first >= 0xF5 || length > s.size()) return 1;
  const auto continues = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80; };
  return std::ranges::all_of(s.substr(1, length - 1), continues) ? length : 1;
}

std::optional<double> plain_number(std::string_view s) {
  double v = 0;
  const auto [stop, error] = std::from_chars(s.data(), s.data() + s.size(), v);
  if (stop != s.data() + s.size() || error == std::errc::invalid_argument) return std::nullopt;
  return error == std::errc{} ? v : parse_real(s);  // beyond the range of a double: infinity or zero
}

}  // namespace

line_reader::line_reader(std::string_view text, std::size_t first_line)
    : rest_(without_byte_order_mark(text)),
      end_(rest_.find('\n') == std::string_view::npos ? '\r' : '\n'),
      number_(first_line - 1) {}

std::optional<std::string_view> line_reader::next() {
  if (rest_.empty()) return std::nullopt;
  ++number_;
  const std::size_t length = rest_.find(end_);
  std::string_view line = rest_.substr(0, length);
  rest_.remove_prefix(length == std::string_view::npos ? rest_.size() : length + 1);
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

std::optional<std::string_view> line_reader::skip_to(std::string_view word) {
  const std::string_view text = rest_;
  const auto ends_line = [this](char c) { return c == end_; };
  for (std::size_t at = text.find(word); at != std::string_view::npos; at = text.find(word, at + 1)) {
    const std::size_t behind = at + word.size();
    std::size_t begin = at;
    while (begin > 0 && is_blank(text[begin - 1]) && !ends_line(text[begin - 1])) --begin;
    if (begin > 0 && !ends_line(text[begin - 1])) continue;
    if (behind < text.size() && !is_blank(text[behind]) && !ends_line(text[behind])) continue;
    number_ += static_cast<std::size_t>(
        std::count_if(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(begin), ends_line));
    rest_.remove_prefix(begin);
    next();
    return text.substr(0, begin);
  }
  number_ += static_cast<std::size_t>(std::ranges::count_if(text, ends_line)) +
             (text.empty() || text.ends_with(end_) ? 0 : 1);
  rest_ = {};
  return std::nullopt;
}

std::optional<std::string_view> blank_cells::next() {
  std::size_t begin = 0;
  while (begin < rest_.size() && is_blank(rest_[begin])) ++begin;
  rest_.remove_prefix(begin);
  if (rest_.empty() || rest_[0] == '#') return std::nullopt;
  if (rest_[0] == '"') {
    const std::size_t close = std::min(rest_.find('"', 1), rest_.size());
    const std::string_view cell = rest_.substr(1, close - 1);
    rest_.remove_prefix(std::min(close + 1, rest_.size()));
    return cell;
  }
  std::size_t end = 1;
  while (end < rest_.size() && !is_blank(rest_[end])) ++end;
  const std::string_view cell = rest_.substr(0, end);
  rest_.remove_prefix(end);
  return cell;
}

std::optional<double> cell_number(std::string_view s) {
  constexpr std::size_t longest = 512;  // a double with all its digits has some 330
  if (s.size() > longest) return std::nullopt;
  if (s.starts_with('+') && !s.starts_with("+-")) s.remove_prefix(1);
  if (const auto v = plain_number(s)) return v;
  if (s.find(".#") != std::string_view::npos) return std::numeric_limits<double>::quiet_NaN();
  const std::size_t comma = s.find(',');
  if (comma == std::string_view::npos || s.find('.') != std::string_view::npos) return std::nullopt;
  std::string with_point(s);
  with_point[comma] = '.';
  return plain_number(with_point);
}

std::string_view without_margins(std::string_view s) {
  while (!s.empty() && is_blank(s.front())) s.remove_prefix(1);
  while (!s.empty() && is_blank(s.back())) s.remove_suffix(1);
  return s;
}

bool same_word(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, [](char x, char y) { return lower(x) == lower(y); });
}

std::string ascii(std::string_view s) {
  std::string plain;
  while (!s.empty()) {
    const std::size_t length = utf8_length(s);
    auto code = static_cast<unsigned char>(s[0]);
    if (length == 2 && code == 0xC3) code = static_cast<unsigned char>(static_cast<unsigned char>(s[1]) + 0x40);
    if (length > 2 || (length == 2 && s[0] != '\xC3') || code < 0x20 || (code >= 0x7F && code < 0xC0)) {
      plain += '?';
    } else {
      plain += code < 0x80 ? static_cast<char>(code) : bare_letters[code - 0xC0U];
    }
    s.remove_prefix(length);
  }
  return plain;
}

void refuse_line(std::string_view name, std::size_t line, std::string_view what) {
  refuse_content(name, fmt::format("line {}: {}", line, what));
}

std::string expected_found(std::string_view expected, std::string_view found) {
  return fmt::format("expected {}, found {}", expected,
                     without_margins(found).empty() ? "nothing" : in_quotes(ascii(cut(found, 80))));
}

}  // namespace corvantile
