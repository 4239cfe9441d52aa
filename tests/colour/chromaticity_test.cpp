#include "colour/chromaticity.hpp"

#include <cmath>
#include <gtest/gtest.h>

namespace corvantile {
namespace {

TEST(Chromaticity, ConvertsPublishedPairs) {
  const struct {
    vec2 xy, uv;
    double tol;
    const char* source;
  } rows[] = {
      {{{0.3127, 0.3290}}, {{0.19783000664283681, 0.312213329959194}}, 1e-12, "HSLuv, D65; v = 2/3 v' of 1976"},
      {{{0.26414771, 0.37770001}}, {{0.15085309, 0.32355314}}, 2e-8, "colour-science/colour, eight digits"},
      {{{0.50453169, 0.37440000}}, {{0.31125983, 0.34646688}}, 2e-8, "colour-science/colour, eight digits"},
      {{{0.47670437, 0.35789998}}, {{0.30069388, 0.33863231}}, 2e-8, "colour-science/colour, eight digits"}};
  matrix batch(std::size(rows), 2);
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    const auto& r = rows[i];
    SCOPED_TRACE(r.source);
    for (std::size_t c = 0; c < 2; ++c) {
      EXPECT_NEAR(xy2uv_vec(r.xy)[c], r.uv[c], r.tol);
      EXPECT_NEAR(uv2xy_vec(r.uv)[c], r.xy[c], r.tol);
      EXPECT_NEAR(uv2xy_vec(xy2uv_vec(r.xy))[c], r.xy[c], 2e-16);
      EXPECT_NEAR((*xyz2xy(xy2xyz(r.xy, 250.0)))[c], r.xy[c], 2e-16);
      batch(i, c) = r.xy[c];
    }
    EXPECT_EQ(xy2xyz(r.xy, 250.0)[1], 250.0);
  }
  const matrix uv = xy2uv_mat(batch);
  const matrix xy = uv2xy_mat(uv);
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    EXPECT_EQ((vec2{{uv(i, 0), uv(i, 1)}}), xy2uv_vec(rows[i].xy));
    EXPECT_EQ((vec2{{xy(i, 0), xy(i, 1)}}), uv2xy_vec(xy2uv_vec(rows[i].xy)));
  }
  EXPECT_EQ(xyz2xy({{0, 0, 0}}), std::nullopt) << "black has no chromaticity";
}

TEST(ColourMatchingTable, HasEqualAreasAndPublishedLandmarks) {
  vec3 sum;
  for (const vec3& row : wxyz) sum = sum + row;
  EXPECT_NEAR(sum[0] / sum[1], 1.0, 5e-5) << "the observer gives the equal-energy spectrum x = y = 1/3";
  EXPECT_NEAR(sum[2] / sum[1], 1.0, 5e-5);
  const auto at = [](int nm) { return wxyz[static_cast<std::size_t>((nm - wxyz_first_nm) / wxyz_step_nm)]; };
  EXPECT_EQ(at(380), (vec3{{0.0014, 0.0000, 0.0065}}));
  EXPECT_EQ(at(395)[0], 0.0076) << "0.00765 in longer tables; the four-decimal tables print 0.0076";
  EXPECT_EQ(at(555)[1], 1.0) << "photopic peak";
  EXPECT_EQ(at(780), vec3{});
}

TEST(BlackBody, HasPublishedColours) {
  // Published with c2 = 1.4388e-2 m K and finer observer tables: hence the tolerances.
  const char* const robertson = "Robertson 1968; Wyszecki and Stiles 1982, table 1(3.11)";
  const char* const colour = "colour-science/colour unit tests";
  const struct {
    double T;
    vec2 uv;
    const char* source;
  } rows[] = {{10000, {{0.19032, 0.29326}}, robertson},
              {8000, {{0.19462, 0.30141}}, robertson},
              {1e6 / 150, {{0.19962, 0.30921}}, robertson},
              {5000, {{0.21142, 0.32312}}, robertson},
              {4000, {{0.22511, 0.33439}}, robertson},
              {1e6 / 325, {{0.24792, 0.34655}}, "the book's misprint 0.24702 corrected"},
              {2500, {{0.27218, 0.35407}}, robertson},
              {2000, {{0.30505, 0.35907}}, robertson},
              {4000, {{0.225109670227493, 0.334387366663923}}, colour},
              {7000, {{0.198126929048352, 0.307025980523306}}, colour}};
  for (const auto& r : rows) {
    SCOPED_TRACE(r.source);
    const vec2 uv = xy2uv_vec(*xyz2xy(blkbod(r.T)));
    EXPECT_NEAR(uv[0], r.uv[0], 6e-5) << r.T;
    EXPECT_NEAR(uv[1], r.uv[1], 6e-5) << r.T;
  }
  const vec3 a = blackbody_color(2856);  // illuminant A, ASTM E308-01
  EXPECT_NEAR(a[0], 1.09850, 5e-5);
  EXPECT_EQ(a[1], 1.0);
  EXPECT_NEAR(a[2], 0.35585, 5e-5);
}

TEST(BlackBody, SumsTheFourDecimalTableWithItsOwnConstants) {
  // Computed independently from the four-decimal table; a six-digit table gives 5009.6656 K and 9286.8433 K.
  const struct {
    double T;
    vec2 xy;
    double cct;
  } rows[] = {{2856, {{0.447576, 0.407445}}, 2790.4881},
              {5000, {{0.345138, 0.351654}}, 5009.6470},
              {6504, {{0.313498, 0.323625}}, 6502.3051},
              {9300, {{0.284896, 0.293292}}, 9287.0084}};
  for (const auto& r : rows) {
    SCOPED_TRACE(r.T);
    const vec2 xy = *xyz2xy(blkbod(r.T));
    EXPECT_NEAR(xy[0], r.xy[0], 5.1e-7);
    EXPECT_NEAR(xy[1], r.xy[1], 5.1e-7);
    EXPECT_NEAR(xyz2cct(blkbod(r.T)), r.cct, 5.1e-5) << "a triple is reduced to x, y first";
  }
}

TEST(Xyz2Cct, GivesPublishedTemperatures) {
  const struct {
    vec2 xy;
    double cct, tol;
    const char* source;
  } rows[] = {{{{0.31270, 0.32900}}, 6500.74204318, 1e-6, "D65, colour-science/colour"},
              {{{0.44757, 0.40745}}, 2790.64222533, 1e-6, "illuminant A, colour-science/colour"},
              {{{0.4083308, 0.2988462}}, 2412.792, 1e-3, "far from the locus, colorscience manual"}};
  for (const auto& r : rows) EXPECT_NEAR(xyz2cct(r.xy), r.cct, r.tol) << r.source;
}

TEST(CctSegment, IsTheLineOfConstantTemperatureWithTheWidthAskedFor) {
  for (const double T : {2500.0, 5000.0, 6504.0, 9300.0, 20000.0})
    for (const double w : {0.001, 0.02}) {
      SCOPED_TRACE(testing::Message() << T << " K, half-width " << w);
      const locus_swath s = cct_segment(T, w);
      EXPECT_EQ(s.at(0), s.p);
      EXPECT_LT(s.tmin, 0);
      EXPECT_GT(s.tmax, 0);
      const vec2 centre = xy2uv_vec(s.p);
      for (const double t : {s.tmin, s.tmax}) {
        const vec2 d = xy2uv_vec(s.at(t)) - centre;
        EXPECT_NEAR(std::hypot(d[0], d[1]), w, 1e-14);
        EXPECT_NEAR(xyz2cct(s.at(t)) / xyz2cct(s.p), 1.0, 1e-12);
      }
    }
}

}  // namespace
}  // namespace corvantile
