#include "corvantile/readings/provenance.hpp"

#include <gtest/gtest.h>

#include "tests/readings/charts.hpp"

namespace corvantile {
namespace {

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
  const ramp_choice c = ramps(chart(additive({}), 9, 4), ramp_source::measured);
  const std::string text = measurement_text(c.data, provenance_comment(p));
  EXPECT_EQ(parse_provenance(text), p);
  EXPECT_EQ(parse_measurements("again", text).data, c.data.data);
  EXPECT_EQ(parse_provenance(provenance_comment({})), provenance{});
}

TEST(Provenance, KeepsToCommentLinesWhateverTheTexts) {
  const calibration_curves uneven{{{{0, 1}, {0, 1}}, {{0, 0.5, 1}, {0, 0.2, 1}}, {{0, 1}, {0, 0.8}}}};
  provenance p;
  p.source = "a\n9 0 2\r";
  p.display = std::string(5000, 'x');
  p.calibration = uneven;
  const std::string text = measurement_text({"m", matrix(8, 6), 2, 2}, provenance_comment(p));
  EXPECT_EQ(parse_measurements("m", text).nramp, 2);
  const provenance back = parse_provenance(text);
  EXPECT_EQ(back.source, "a 9 0 2");
  for (std::size_t c = 0; c < 3; ++c) {
    for (const double u : {0., 0.3, 0.5, 1.})
      EXPECT_NEAR(interp((*back.calibration)[c], u), interp(uneven[c], u), 1e-15);
  }
}

TEST(Provenance, TakesNothingFromSpoiltLines) {
  for (const char* text : {"; White drift: much\n", "; Repeated white: -1 readings, spread nan %\n",
                           "; Calibration in effect: yes, 1e9 entries\n; 0 0 0 0\n1 0 2\n",
                           "; Calibration in effect: yes, 2 entries\n; 1 0 0 0\n; 0 0 0 0\n", "; Units: feet", ";"}) {
    EXPECT_EQ(parse_provenance(text), provenance{}) << text;
  }
}

}  // namespace
}  // namespace corvantile
