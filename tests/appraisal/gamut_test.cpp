#include "corvantile/appraisal/gamut.hpp"

#include <cmath>
#include <gtest/gtest.h>

namespace corvantile {
namespace {

TEST(UniformChromaticity, OfD65AndOfSrgbIsAsPublished) {
  const std::pair<vec2, vec2> rows[] = {{{{0.3127, 0.3290}}, {{0.1978, 0.4683}}},
                                        {{{0.64, 0.33}}, {{0.4507, 0.5229}}},
                                        {{{0.30, 0.60}}, {{0.1250, 0.5625}}},
                                        {{{0.15, 0.06}}, {{0.1754, 0.1579}}}};
  for (const auto& [xy, want] : rows) {
    EXPECT_NEAR(xy2uv1976(xy)[0], want[0], 5e-5);
    EXPECT_NEAR(xy2uv1976(xy)[1], want[1], 5e-5);
  }
}

TEST(Clipping, LeavesTheCommonPartWhateverTheSenseOfRotation) {
  const std::array<vec2, 3> window{{{{0, 0}}, {{4, 0}}, {{0, 4}}}}, turned{window[0], window[2], window[1]};
  const struct {
    std::vector<vec2> subject;
    double area;
    const char* why;
  } rows[] = {{{{{1, 1}}, {{2, 1}}, {{1, 2}}}, 0.5, "inside"},
              {{{{-9, -9}}, {{40, -9}}, {{-9, 40}}}, 8, "around"},
              {{{{0, 0}}, {{4, 0}}, {{4, 4}}, {{0, 4}}}, 8, "a square, cut in half"},
              {{{{2, 2}}, {{2, -2}}, {{-2, 2}}}, 4, "across a corner: a square"},
              {{{{5, 5}}, {{6, 5}}, {{5, 6}}}, 0, "apart"}};
  for (const auto& r : rows) {
    SCOPED_TRACE(r.why);
    EXPECT_NEAR(polygon_area(clipped(r.subject, window)), r.area, 1e-12);
    EXPECT_NEAR(polygon_area(clipped(r.subject, turned)), r.area, 1e-12);
    EXPECT_NEAR(polygon_area(clipped({r.subject.rbegin(), r.subject.rend()}, window)), r.area, 1e-12);
  }
}

TEST(Coverage, IsTheShareOfTheCommonArea) {
  const std::array<vec2, 3> half{{{{0, 0}}, {{1, 0}}, {{0, 1}}}}, turned{{{{0, 0}}, {{0, 1}}, {{1, 0}}}};
  const std::array<vec2, 3> small{{{{0, 0}}, {{0.5, 0}}, {{0, 0.5}}}}, far{{{{5, 5}}, {{6, 5}}, {{5, 6}}}},
      line{{{{0, 0}}, {{1, 1}}, {{2, 2}}}};
  const std::array<vec2, 3> upside{{{{1, 1}}, {{0, 1}}, {{1, 0}}}}, shifted{{{{0.5, 0}}, {{1.5, 0}}, {{0.5, 1}}}};
  EXPECT_DOUBLE_EQ(coverage(half, half), 1);
  EXPECT_DOUBLE_EQ(coverage(turned, small), 1) << "either sense of rotation";
  EXPECT_DOUBLE_EQ(coverage(small, turned), 0.25);
  EXPECT_DOUBLE_EQ(coverage(shifted, half), 0.25) << "two edges cross";
  EXPECT_NEAR(coverage(upside, half), 0, 1e-15) << "an edge in common";
  EXPECT_DOUBLE_EQ(coverage(far, half), 0);
  EXPECT_TRUE(std::isnan(coverage(half, line)));
}

TEST(Gamut, OfOneStandardBesideTheOthers) {
  const auto small = compare_gamut(srgb), wide = compare_gamut(bt2020);
  EXPECT_NEAR(small[0].area, 1, 1e-12);
  EXPECT_NEAR(small[0].coverage, 1, 1e-12);
  EXPECT_NEAR(small[3].coverage, small[3].area, 1e-12) << "sRGB lies within BT.2020";
  EXPECT_NEAR(wide[0].coverage, 1, 1e-12);
  EXPECT_NEAR(small[3].area * wide[0].area, 1, 1e-12);
  const auto p3 = compare_gamut(display_p3), adobe = compare_gamut(adobe_rgb);
  EXPECT_LT(adobe[1].coverage, 0.99 * adobe[1].area) << "neither of these two contains the other";
  EXPECT_NEAR(adobe[1].coverage, adobe[1].area * p3[2].coverage, 1e-12) << "they share one common part";
}

}  // namespace
}  // namespace corvantile
