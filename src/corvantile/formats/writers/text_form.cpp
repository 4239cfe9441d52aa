#include "corvantile/formats/writers/text_form.hpp"

#include <array>
#include <fmt/compile.h>
#include <utility>

namespace corvantile {
namespace {

std::string replaced(std::string s, std::string_view what, std::string_view by) {
  for (std::size_t at = 0; (at = s.find(what, at)) != std::string::npos; at += by.size())
    s.replace(at, what.size(), by);
  return s;
}

}  // namespace

// A large cube has millions of rows: the form is taken apart by the compiler.
void append_row(std::string& out, const vec3& v) {
  fmt::format_to(std::back_inserter(out), FMT_COMPILE("{:.9g} {:.9g} {:.9g}\n"), v[0], v[1], v[2]);
}

void append_rows(std::string& out, const matrix& table) {
  for (std::size_t i = 0; i < table.rows(); ++i) append_row(out, row3(table, i));
}

std::string xml_text(std::string_view text) {
  std::string s = replaced(ascii(text), "&", "&amp;");
  s = replaced(std::move(s), "<", "&lt;");
  s = replaced(std::move(s), ">", "&gt;");
  return replaced(std::move(s), "\"", "&quot;");
}

std::string plain_quoted(std::string_view text) { return fmt::format("\"{}\"", replaced(ascii(text), "\"", "'")); }

std::string yaml_quoted(std::string_view text) {
  return fmt::format("\"{}\"", replaced(replaced(ascii(text), "\\", "\\\\"), "\"", "\\\""));
}

std::string c_comment(std::string_view text) {
  // The trigraph is a backslash; compilers warn of one at the end of a comment's line.
  return replaced(replaced(replaced(ascii(text), "*/", "* /"), "/*", "/ *"), "?\?/", "?\? /");
}

std::string comment_lines_only(const description& about, std::string_view prefix) {
  std::string s;
  for (const std::string& line : about.comments) append(s, "{} {}\n", prefix, ascii(line));
  return s;
}

std::string comment_lines(const description& about, std::string_view prefix) {
  const std::string title = about.title.empty() ? "" : fmt::format("{} {}\n", prefix, ascii(about.title));
  return title + comment_lines_only(about, prefix);
}

std::string date_text(std::chrono::sys_seconds t) {
  constexpr std::array weekdays{"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
  constexpr std::array months{"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  const auto day = std::chrono::floor<std::chrono::days>(t);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss time(t - day);
  return fmt::format("{} {} {:2} {:02}:{:02}:{:02} {}", weekdays[std::chrono::weekday(day).c_encoding()],
                     months[static_cast<unsigned>(date.month()) - 1], static_cast<unsigned>(date.day()),
                     time.hours().count(), time.minutes().count(), time.seconds().count(),
                     static_cast<int>(date.year()));
}

}  // namespace corvantile
