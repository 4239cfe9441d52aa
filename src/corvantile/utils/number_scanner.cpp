#include "corvantile/utils/number_scanner.hpp"

#include <algorithm>
#include <array>

namespace corvantile {
namespace {

// A separator ends a number. All but the comma and the slash also count as blanks.
constexpr bool is_separator(char c) { return is_white_space(c) || c == ',' || c == '/'; }
constexpr auto separators = []() {
  std::array<bool, 256> t{};
  for (std::size_t c = 0; c < t.size(); ++c) t[c] = is_separator(static_cast<char>(c));
  return t;
}();

}  // namespace

void number_scanner::skip_blanks() {
  for (; pos_ < text_.size() && is_white_space(text_[pos_]); ++pos_)
    if (text_[pos_] == '\n') ++line_;
}

number_scanner::result number_scanner::take_item() {
  if (repeats_ > 0) return result::number;
  skip_blanks();
  if (after_item_ && pos_ < text_.size() && text_[pos_] == ',') {
    ++pos_;
    after_item_ = false;
    skip_blanks();
  }
  item_line_ = line_;
  item_ = {};
  if (pos_ == text_.size() || text_[pos_] == '/') return result::end;

  std::size_t end = pos_;
  std::size_t star = std::string_view::npos;
  for (; end < text_.size() && !separators[static_cast<unsigned char>(text_[end])]; ++end)
    if (text_[end] == '*' && star == std::string_view::npos) star = end;
  if (end == pos_) {
    item_ = ",";
    return result::bad;
  }
  item_ = text_.substr(pos_, end - pos_);
  value_ = item_;
  repeats_ = 1;
  if (star != std::string_view::npos) {
    const auto count = parse_integer(text_.substr(pos_, star - pos_));
    repeats_ = count && *count > 0 ? static_cast<std::uint64_t>(*count) : 0;
    value_ = text_.substr(star + 1, end - star - 1);
    if (repeats_ == 0 || value_.empty()) return repeats_ = 0, result::bad;
  }
  pos_ = end;
  after_item_ = true;
  return result::number;
}

template <class T>
number_scanner::result number_scanner::take_number(T& v, std::optional<T> (*parse)(std::string_view)) {
  const result r = take_item();
  if (r != result::number) return r;
  const std::optional<T> number = parse(value_);
  if (!number) return result::bad;
  --repeats_;
  v = *number;
  return r;
}

number_scanner::result number_scanner::next(double& v) { return take_number(v, parse_real); }
number_scanner::result number_scanner::next(std::int64_t& v) { return take_number(v, parse_integer); }

std::optional<std::string_view> number_scanner::next_line() {
  repeats_ = 0;
  after_item_ = false;
  item_ = {};
  item_line_ = line_;
  if (pos_ == text_.size()) return std::nullopt;
  const std::size_t end = std::min(text_.find('\n', pos_), text_.size());
  std::string_view rest = text_.substr(pos_, end - pos_);
  pos_ = end;
  if (pos_ < text_.size()) {
    ++pos_;
    ++line_;
  }
  if (rest.ends_with('\r')) rest.remove_suffix(1);
  return rest;
}

std::string number_scanner::problem(std::string_view expected) const {
  std::string s = "line " + integer_field(static_cast<std::int64_t>(item_line_)) + ": expected ";
  s += expected;
  s += ", found ";
  if (item_.empty()) return s + "the end";
  if (item_ == ",") return s + "a comma without a value before it";
  return s + in_quotes(item_);
}

}  // namespace corvantile
