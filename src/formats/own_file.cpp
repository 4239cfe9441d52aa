#include "formats/own_file.hpp"

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "formats/raw_readings.hpp"
#include "formats/text_lines.hpp"
#include "monitor/measurements.hpp"
#include "utils/failure.hpp"
#include "utils/text.hpp"

namespace corvantile {
namespace {

// Steps over the comments; calls `take` with the text of each. The scanner then stands before the header.
template <class F>
number_scanner behind_comments(std::string_view text, F take) {
  number_scanner numbers(text);
  for (number_scanner ahead = numbers;; numbers = ahead) {
    const auto line = ahead.next_line();
    if (!line || !line->starts_with(';')) return numbers;
    take(line->substr(1));
  }
}

void take_comment(readings& into, std::string_view comment) {
  const std::size_t colon = comment.find(':');
  if (colon == std::string_view::npos) return;
  const std::string_view key = without_margins(comment.substr(0, colon));
  const std::string value = ascii(without_margins(comment.substr(colon + 1)).substr(0, 200));
  for (const auto& [name, field] :
       {std::pair{"Instrument", &into.instrument}, std::pair{"Software", &into.originator},
        std::pair{"Date", &into.date}, std::pair{"Display", &into.display}})
    if (same_word(key, name)) *field = value;
  if (same_word(key, "Unit")) into.absolute = value == "cd/m2";
}

}  // namespace

bool is_own_file(std::string_view text) {
  number_scanner numbers = behind_comments(text, [](std::string_view) {});
  const auto header = numbers.next_line();
  if (!header) return false;
  number_scanner counts(*header);
  std::int64_t levels = 0;
  std::int64_t extra = 0;
  std::int64_t version = 0;
  for (std::int64_t* count : {&levels, &extra, &version})
    if (counts.next(*count) != number_scanner::result::number) return false;
  double more = 0;
  return (version == 1 || version == 2) && counts.next(more) == number_scanner::result::end;
}

readings read_own_file(std::string_view name, std::string_view text) {
  const measurements samples = parse_measurements(std::string(name), text);
  readings found;
  found.source = name;
  found.kind = "Corvantile measurements";
  number_scanner numbers = behind_comments(text, [&](std::string_view comment) { take_comment(found, comment); });
  numbers.next_line();  // the header

  std::vector<raw_reading> rows(samples.data.rows());
  double full_drive = 0;
  for (raw_reading& row : rows) {
    for (std::size_t c = 0; c < 6; ++c) {
      double v = 0;
      numbers.next(v);
      if (c == 0) row.line = numbers.line();
      (c < 3 ? row.drive[c] : row.xyz[c - 3]) = v;
      if (c < 3) full_drive = std::max(full_drive, v);
    }
  }
  if (!(full_drive > 0)) refuse_content(name, "no drive value is above 0, so that full drive is unknown");
  append_rows(found, rows, {0, full_drive});
  if (!found.absolute) found.notes.emplace_back("X, Y, Z stay relative: no comment tells their unit.");
  return found;
}

}  // namespace corvantile
