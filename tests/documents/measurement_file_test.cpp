#include "corvantile/documents/measurement_file.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <gtest/gtest.h>

#include "corvantile/utils/failure.hpp"

namespace corvantile {
namespace {

TEST(MeasurementFile, IsReadAsOneStreamBehindComments) {
  const std::string ramp = "255 255 255 9 9 9 0 0 0 0 0 0\n", rest = "9 0 0 0 0 0 0 " + ramp + ramp + ramp;
  const matrix m = parse_measurements("m", "; one\n;two\n2,0,2 and more\n255\n255 255,9 9\n" + rest + "words").data;
  EXPECT_TRUE(std::ranges::equal(m.col(5), std::array{9, 0, 9, 0, 9, 0, 9, 0}));
  EXPECT_EQ(parse_measurements("m", "17 600 2\n408*1 3600*0").data.rows(), 668u) << "repeat counts";
  const auto header = [](std::size_t length) { return "2 0" + std::string(length - 4, ' ') + "2\n48*1"; };
  EXPECT_EQ(parse_measurements("m", header(1024)).version, 2);
  EXPECT_THROW(parse_measurements("m", header(1025)), failure) << "behind what counts of the line";
}

TEST(MeasurementFile, IsRefusedIfItGivesNoModel) {
  const std::string w = "9 9 9 1.1 1.1 1.1 0 0 0 0 0 0\n", r = "9 0 0 .4 .2 .1 0 0 0 0 0 0\n",
                    g = "0 9 0 .1 .3 .1 0 0 0 0 0 0\n", b = "0 0 9 .1 .1 .7 0 0 0 0 0 0\n",
                    off = "0 0 0 0 0 0 0 0 0 0 0 0\n", rest = " 0 0 0 0 0 0\n";
  const std::pair<std::string, const char*> rows[] = {
      {"\n2 0 2\n" + w + r + g + b, "m: line 1: "},  // a blank line is not a comment: it counts as the header
      {";\n2 0\n2\n" + w + r + g + b, "m: line 2: "},
      {"1 0 2\n" + w + r + g + b, "m: line 1: a ramp has 1 levels"},
      {";\n2 -1 2\n" + w + r + g + b, "m: line 2: the number of extra samples is -1"},
      {"2000000000 2000000000 1\n", "m: line 1: 2000000000 levels and 2000000000 extra"},
      {"2 0 2\n" + w + r + g + "0 0 9 9 9 9 0 0", "number 3 of 6 of sample 8"},
      {"2 0 2\n" + w + "9 x 0\n" + g + b, "number 2 of 6 of sample 3 (level 1 of the red ramp)"},
      {"2 0 2\nNaN 9 9 9 9 9" + rest + r + g + b, "m: sample 1 (level 1 of the white ramp): R is NaN"},
      {"2 0 2\n" + w + r + "0 9 0 9 9 Inf" + rest + b, "m: sample 5 (level 1 of the green ramp): Z is Inf"},
      {"3 0 2\n9 9 9 1 1 1 12*5\n5 0 0 4 2 1\n9 0 0 2 1 1\n42*0",
       "m: line 3: sample 4 (level 1 of the red ramp): drive 5 is not the highest of its ramp, sample 5"},
      {"3 0 2\n9 9 9 1 1 1 12*5\n9 0 0 4 2 1\n6*0\n5 5*0\n36*0",
       "m: line 5: sample 6 (level 3 of the red ramp): drive 5 is not the lowest of its ramp, sample 5"},
      {"2 0 2\n" + w + r + g + off, "m: the blue channel gets no brighter than the dark"},
      {"2 0 2\n" + off + r + g + b, "m: sample 1 (level 1 of the white ramp): X, Y, Z are 0 0 0, expected a white"},
      {"2 0 2\n9 9 9 -2 1.1 -2" + rest + r + g + b, "X, Y, Z are -2 1.1 -2, expected a white"},
      {"2 0 2\n" + off + off + off + off, "m: no drive value is above 0"},
      {"2 0 2\n" + w + r + g + "0 0 9 .5 .5 .2" + rest, "m: the three primaries lie on one line"}};
  for (const auto& [text, fragment] : rows) {
    try {
      makemonitor(parse_measurements("m", text));
      ADD_FAILURE() << text;
    } catch (const failure& stop) {
      EXPECT_EQ(stop.kind, fault::content);
      EXPECT_NE(stop.message.find(fragment), std::string::npos) << stop.message;
    }
  }
}

TEST(Provenance, SurvivesTheFile) {
  const provenance p{.source = "panel.ti3",
                     .kind = "Argyll .ti3",
                     .instrument = "i1 \"Pro\", 3*0.5",
                     .originator = "a program",
                     .date = "Mon Aug  1 19:55:21 2022",
                     .display = "Bildschirm \xc3\xbc",
                     .readings = 596,
                     .absolute = true,
                     .ramps = "derived (near gray 0.22 against 0.43)",
                     .repeated = {.white = repeat_spread{4, 0.0031},
                                  .dark = repeat_spread{2, 1.5e-7},
                                  .ramps = repeat_spread{3, 0.25},
                                  .drift = white_drift{-0.0042, 1, 590, 596}},
                     .calibration = calibration_curves{{{{0, 0.1, 1}, {0, 0.30000000000000004, 1}},
                                                        {{0, 0.1, 1}, {0, 1e-17, 0.9}},
                                                        {{0, 0.1, 1}, {0, 0.2, 1. / 3}}}},
                     .notes = {"one", "Source: two"}};
  measurements samples{"m", matrix(9, 6), 2, 2};
  for (std::size_t i = 0; i < 54; ++i) samples.data(i / 6, i % 6) = std::sqrt(static_cast<double>(i) / 3);
  const measurement_file again = parse_measurement_file("again", measurement_text(samples, p));
  EXPECT_EQ(again.known, p);
  EXPECT_EQ(again.samples.data, samples.data);
  EXPECT_EQ(parse_measurement_file("m", measurement_text(samples, {})).known, provenance{});
}

TEST(Provenance, KeepsToCommentLinesWhateverTheTexts) {
  const calibration_curves uneven{{{{0, 1}, {0, 1}}, {{0, 0.5, 1}, {0, 0.2, 1}}, {{0, 1}, {0, 0.8}}}};
  provenance p;
  p.source = "a\n9 0 2\r";
  p.display = std::string(5000, 'x');
  p.calibration = uneven;
  const auto [samples, back] = parse_measurement_file("m", measurement_text({"m", matrix(8, 6), 2, 2}, p));
  EXPECT_EQ(samples.nramp, 2);
  EXPECT_EQ(back.source, "a 9 0 2");
  for (std::size_t c = 0; c < 3; ++c) {
    for (const double u : {0., 0.3, 0.5, 1.})
      EXPECT_NEAR(interp((*back.calibration)[c], u), interp(uneven[c], u), 1e-15);
  }
}

TEST(Provenance, TakesNothingFromSpoiltLines) {
  for (const char* text : {"; White drift: much\n", "; Repeated white: -1 readings, spread nan %\n",
                           "; Calibration in effect: yes, 1e9 entries\n; 0 0 0 0\n",
                           "; Calibration in effect: yes, 2 entries\n; 1 0 0 0\n; 0 0 0 0\n", "; Units: feet", ";"}) {
    const std::string line_end = std::string_view(text).ends_with('\n') ? "" : "\n";
    EXPECT_EQ(parse_measurement_file("m", text + line_end + "2 0 2\n48*1\n").known, provenance{}) << text;
  }
}

}  // namespace
}  // namespace corvantile
