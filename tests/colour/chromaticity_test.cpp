#include "corvantile/colour/chromaticity.hpp"

#include <cmath>
#include <gtest/gtest.h>

namespace corvantile {
namespace {

double distance(const vec2& a, const vec2& b) { return std::hypot(a[0] - b[0], a[1] - b[1]); }

TEST(Chromaticity, ConvertsPublishedPairs) {
  const vec2 d65{{0.3127, 0.3290}};
  EXPECT_LT(distance(xy2uv_vec(d65), {{0.19783000664283681, 0.312213329959194}}), 1e-12) << "HSLuv; v = 2/3 v'";
  EXPECT_LT(distance(xy2uv_vec({{0.26414771, 0.37770001}}), {{0.15085309, 0.32355314}}), 2e-8) << "colour-science";
  EXPECT_LT(distance(uv2xy_vec({{0.31125983, 0.34646688}}), {{0.50453169, 0.37440000}}), 2e-8) << "colour-science";
  EXPECT_LT(distance(*xyz2xy(xy2xyz(d65, 250)), d65), 3e-16);
  EXPECT_EQ(xyz2xy({{0, 0, 0}}), std::nullopt) << "black has no chromaticity";
}

TEST(BlackBody, HasPublishedColours) {
  // Robertson 1968 and colour-science/colour, with c2 = 1.4388e-2 m K and finer observer tables: hence the tolerance.
  const std::pair<double, vec2> published[] = {{10000, {{0.19032, 0.29326}}},
                                               {7000, {{0.198126929048352, 0.307025980523306}}},
                                               {5000, {{0.21142, 0.32312}}},
                                               {4000, {{0.225109670227493, 0.334387366663923}}},
                                               {2000, {{0.30505, 0.35907}}}};
  for (const auto& [T, uv] : published) EXPECT_LT(distance(xy2uv_vec(*xyz2xy(blkbod(T))), uv), 8e-5) << T;
  EXPECT_LT(dist2(blackbody_color(2856), {{1.09850, 1, 0.35585}}), 5e-9) << "illuminant A, ASTM E308-01";
}

TEST(Xyz2Cct, GivesPublishedTemperatures) {
  EXPECT_NEAR(xyz2cct(vec2{{0.31270, 0.32900}}), 6500.74204318, 1e-6) << "D65, colour-science/colour";
  EXPECT_NEAR(xyz2cct(vec2{{0.44757, 0.40745}}), 2790.64222533, 1e-6) << "illuminant A, colour-science/colour";
  EXPECT_NEAR(xyz2cct(vec2{{0.4083308, 0.2988462}}), 2412.792, 1e-3) << "far from the locus, colorscience manual";
}

TEST(CctSegment, IsTheLineOfConstantTemperatureWithTheWidthAskedFor) {
  for (const double T : {2500.0, 6504.0, 20000.0}) {
    const locus_swath s = cct_segment(T, 0.02);
    EXPECT_LT(s.tmin, 0);
    EXPECT_GT(s.tmax, 0);
    for (const double t : {s.tmin, s.tmax}) {
      EXPECT_NEAR(distance(xy2uv_vec(s.at(t)), xy2uv_vec(s.p)), 0.02, 1e-14);
      EXPECT_NEAR(xyz2cct(s.at(t)) / xyz2cct(s.p), 1.0, 1e-12);
    }
  }
}

}  // namespace
}  // namespace corvantile
