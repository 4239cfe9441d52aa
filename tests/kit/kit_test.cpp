#include <algorithm>
#include <chrono>
#include <cmath>
#include <gtest/gtest.h>
#include <sstream>

#include "corvantile/kit/request.hpp"
#include "corvantile/kit/terminal.hpp"
#include "corvantile/utils/failure.hpp"
#include "tools/simulated_display.hpp"

namespace corvantile::kit {
namespace {

// The light of a gamma file at one of its drives.
double light_at(const std::string& file, double drive) {
  std::istringstream in(file);
  std::size_t points = 0;
  in >> points;
  EXPECT_EQ(points, 257u);
  for (double d = 0, light = 0; in >> d >> light;) {
    if (d == drive) return light;
  }
  return std::nan("");
}

TEST(GammaFile, HoldsThePublishedCurves) {
  // Calculated by hand from the standards: ((v + 0.055) / 1.055)^2.4, ((L* + 16) / 116)^3 and
  // (v (Lw^(1/2.4) - Lb^(1/2.4)) + Lb^(1/2.4))^2.4.
  const struct {
    const char* curve;
    double white, black, drive, want;
  } rows[] = {{"srgb", 100, 0, 0, 0},
              {"srgb", 100, 0, 8, 0.03125 / 12.92},
              {"srgb", 100, 0, 128, 0.2140411},  // sRGB 50 %
              {"srgb", 100, 0, 256, 1},
              {"lstar", 100, 0, 128, 0.1841865},  // L* 50, the middle gray of 18 %
              {"lstar", 100, 0, 16, 0.0069191},   // L* 6.25
              {"bt1886", 100, 0, 128, 18.9464571},
              {"bt1886", 100, 0.1, 0, 0.1},
              {"bt1886", 100, 0.1, 256, 100},
              {"bt1886", 100, 0.1, 128, 21.6049117}};
  for (const auto& r : rows) {
    EXPECT_NEAR(light_at(gamma_file_of(r.curve, r.white, r.black), r.drive), r.want, 1e-6 * std::max(r.want, 1.0))
        << r.curve << " at " << r.drive;
  }
}

const simulated_display shown{.white = {{0.30, 0.32}}};
const measurements samples{"simulated", sample_rows(shown), shown.levels, shown.version};

TEST(Request, ChoosesModeAndWhite) {
  const vec2 d65{{0.3127, 0.329}}, d50{{0.3457, 0.3585}};
  const struct {
    request w;
    match_mode mode;
    std::optional<vec2> grays;
    vec2 white;
  } rows[] = {{{}, match_mode::cv2_1, d65, d65},
              {{.target = "native"}, match_mode::cv1, {}, srgb.white},
              {{.target = "native", .white = "d50"}, match_mode::cv1, d50, srgb.white},
              {{.white = "d50"}, match_mode::cv2_1, d50, d50},
              {{.white = "0.31,0.33"}, match_mode::cv2_1, vec2{{0.31, 0.33}}, vec2{{0.31, 0.33}}},
              {{.white = "native"}, match_mode::cv2_1, shown.white, shown.white},
              {{.for_device = device::windows}, match_mode::cv2, {}, d65}};
  for (const auto& r : rows) {
    SCOPED_TRACE(r.w.target + ' ' + r.w.white + ' ' + facts_of(r.w.for_device).name);
    const job_inputs p = inputs_for(r.w, samples);
    EXPECT_EQ(p.names.set.mode, r.mode);
    ASSERT_EQ(p.names.set.white.has_value(), r.grays.has_value());
    for (std::size_t i = 0; i < 2; ++i) {
      EXPECT_NEAR(p.names.set.white.value_or(vec2{})[i], r.grays.value_or(vec2{})[i], 1e-6);
      EXPECT_NEAR(p.names.set.xytable.white[i], r.white[i], 1e-6);
    }
    EXPECT_EQ(p.names.set.tlen, r.mode == match_mode::cv1 ? 256 : 4096);
    EXPECT_TRUE(p.names.set.restart);
  }
}

TEST(Request, TakesTheCurveThatWasAskedFor) {
  EXPECT_EQ(inputs_for({.gamma = "1.8"}, samples).names.set.gamma, 1.8);
  EXPECT_FALSE(inputs_for({.gamma = "2.2"}, samples).gamma);
  const auto windows = inputs_for({.for_device = device::windows}, samples).gamma;
  ASSERT_TRUE(windows);
  EXPECT_EQ(*windows, gamma_file_of("srgb", 1, 0)) << "the only curve that Windows has";
  const auto bt1886 = inputs_for({.gamma = "bt1886"}, samples).gamma;
  ASSERT_TRUE(bt1886);
  EXPECT_NEAR(light_at(*bt1886, 0), shown.black_luminance, 1e-6) << "the measured black";
  EXPECT_NEAR(light_at(*bt1886, 256), shown.white_luminance, 1e-3);
}

TEST(Request, RefusesWhatItCannotRead) {
  const request rows[] = {{.target = "rec601"}, {.gamma = "0"},       {.gamma = "no-such-file"}, {.white = "d66"},
                          {.white = "1000"},    {.white = "0.3,0.8"}, {.white = "0.3,"}};
  for (const request& w : rows) EXPECT_THROW(inputs_for(w, samples), failure) << w.target << w.gamma << w.white;
}

TEST(Wrapped, BreaksBetweenWordsOnly) {
  EXPECT_EQ(wrapped("one two three", 2, 9), "  one two\n  three\n");
  EXPECT_EQ(wrapped("unbreakable a", 1, 4), " unbreakable\n a\n") << "a word that is too long has a line of its own";
  EXPECT_EQ(wrapped("", 2), "  \n");
}

}  // namespace
}  // namespace corvantile::kit
