#pragma once
// What holds for all readings, whatever file they come from.

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>

#include "corvantile/readings/readings.hpp"
#include "fuzz/expect.hpp"

namespace corvantile::fuzz {

inline void expect_printable(std::string_view text) {
  expect(std::ranges::all_of(text, [](char c) { return c >= ' ' && c <= '~'; }),
         "text for people is printable ASCII");
}

inline void expect_sound(const readings& found, std::size_t size) {
  expect(!found.rows.empty(), "readings have rows");
  for (const reading& row : found.rows) {
    for (const double d : row.drive.v) expect(d >= 0 && d <= 1, "a drive lies from 0 to 1");
    for (const double v : row.xyz.v) expect(std::isfinite(v), "X, Y, Z are finite");
    expect(row.line >= 1 && row.line <= size, "a row comes from a line of the file");
  }
  expect(found.notes.sentences().size() <= 26, "no more notes than people read");
  for (const std::string& note : found.notes.sentences()) expect_printable(note);
  for (const std::string* text : {&found.instrument, &found.originator, &found.date, &found.display})
    expect_printable(*text);
  if (!found.calibration) return;
  for (const lut& curve : *found.calibration) {
    expect(isvalid_lut(curve) && curve.x.size() >= 2, "a calibration is a table");
    expect(curve.x.front() >= 0 && curve.x.back() <= 1, "a calibration takes drives");
    for (const double y : curve.y) expect(y >= 0 && y <= 1, "a calibration gives drives");
  }
}

/// Runs a reader: it gives sound readings, or refuses the content with a message that names the file.
template <class Read>
void expect_read_or_refused(const Read& read, std::size_t size) {
  readings found;
  if (const auto stop = stop_of([&] { found = read(); })) {
    expect(stop->kind == fault::content, "a reader refuses content");
    expect(stop->message.starts_with("source: ") || stop->message.starts_with("second: "), "the file is named");
    expect(stop->message.size() < 500, "a message is short");
    expect_printable(stop->message);
  } else {
    expect_sound(found, size);
  }
}

}  // namespace corvantile::fuzz
