#include "corvantile/formats/writers/text_form.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "corvantile/utils/text.hpp"

namespace corvantile {
namespace {

std::string replaced(std::string s, std::string_view what, std::string_view by) {
  for (std::size_t at = 0; (at = s.find(what, at)) != std::string::npos; at += by.size())
    s.replace(at, what.size(), by);
  return s;
}

}  // namespace

std::string xml_text(std::string_view text) {
  std::string s = replaced(ascii(text), "&", "&amp;");
  s = replaced(std::move(s), "<", "&lt;");
  s = replaced(std::move(s), ">", "&gt;");
  return replaced(std::move(s), "\"", "&quot;");
}

std::string plain_quoted(std::string_view text) {
  return std::string("\"").append(replaced(ascii(text), "\"", "'")).append("\"");
}

std::string yaml_quoted(std::string_view text) {
  const std::string escaped = replaced(replaced(ascii(text), "\\", "\\\\"), "\"", "\\\"");
  return std::string("\"").append(escaped).append("\"");
}

std::string c_comment(std::string_view text) {
  // The trigraph is a backslash, of which compilers warn at the end of a comment's line.
  return replaced(replaced(replaced(ascii(text), "*/", "* /"), "/*", "/ *"), "?\?/", "?\? /");
}

std::string comment_lines_only(const description& about, std::string_view prefix) {
  std::string s;
  for (const std::string& line : about.comments) s.append(prefix).append(" ").append(ascii(line)).append("\n");
  return s;
}

std::string comment_lines(const description& about, std::string_view prefix) {
  std::string s;
  if (!about.title.empty()) s.append(prefix).append(" ").append(ascii(about.title)).append("\n");
  return s + comment_lines_only(about, prefix);
}

void append_number(std::string& out, double v) {
  std::array<char, 32> room;
  const auto end = std::to_chars(room.data(), room.data() + room.size(), v, std::chars_format::general, 9);
  out.append(room.data(), end.ptr);
}

void append_integer_text(std::string& out, std::size_t v) { append_integer(out, static_cast<std::int64_t>(v), 0); }

void append_row(std::string& out, const vec3& v) {
  for (std::size_t c = 0; c < 3; ++c) {
    append_number(out, v[c]);
    out += c < 2 ? ' ' : '\n';
  }
}

void append_rows(std::string& out, const matrix& table) {
  for (std::size_t i = 0; i < table.rows(); ++i) append_row(out, row3(table, i));
}

std::string date_text(std::chrono::sys_seconds t) {
  constexpr std::string_view weekdays = "SunMonTueWedThuFriSat";
  constexpr std::string_view months = "JanFebMarAprMayJunJulAugSepOctNovDec";
  const auto day = std::chrono::floor<std::chrono::days>(t);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss time(t - day);
  const auto two = [](auto n, char fill) {
    std::string s = integer_field(static_cast<std::int64_t>(n), 2);
    std::ranges::replace(s, ' ', fill);
    return s;
  };
  std::string s(weekdays.substr(std::chrono::weekday(day).c_encoding() * std::size_t{3}, 3));
  s.append(" ").append(months.substr((static_cast<unsigned>(date.month()) - 1) * std::size_t{3}, 3));
  s.append(" ").append(two(static_cast<unsigned>(date.day()), ' ')).append(" ");
  s.append(two(time.hours().count(), '0')).append(":").append(two(time.minutes().count(), '0')).append(":");
  s.append(two(time.seconds().count(), '0')).append(" ");
  return s + integer_field(static_cast<int>(date.year()));
}

}  // namespace corvantile
