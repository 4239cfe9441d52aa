#include <cmath>
#include <gtest/gtest.h>

#include "corvantile/colour/nonpar_monitor.hpp"
#include "corvantile/matching/matching.hpp"
#include "tests/monitor/fitted.hpp"

namespace corvantile {
namespace {

// The display has the gamut of sRGB; the first target lies inside it, the second far outside.
const chromaticity_table inside{{{0.6, 0.34}}, {{0.31, 0.55}}, {{0.17, 0.1}}, {{0.32, 0.335}}};
const chromaticity_table outside{{{0.7, 0.29}}, {{0.17, 0.78}}, {{0.13, 0.04}}, {{0.3127, 0.329}}};

// Its chromaticities do not depend on the level, as a matrix in linear light assumes.
const monitor display = fitted({.gamma = {{2.1, 2.2, 2.4}}, .toe = 0.02, .digits = 12}, 8);

double luminance(const mat3& m) { return (m * vec3{{1, 1, 1}})[1]; }

TEST(TwoTables, TheCorrectedDisplayShowsTheTarget) {
  const auto sol = twolutsolution(display, inside, {.gamma = 1.8, .lut = {}}, 1025);
  EXPECT_EQ(sol.distances, vec3{}) << "all reachable";
  EXPECT_EQ(sol.cmon.name, "frontend on simulated");
  EXPECT_EQ(sol.prelut(512, 1), std::pow(0.5, 1.8)) << "without a tone table, the power law";
  EXPECT_EQ(sol.ref_smon.offset, display.darklight);
  for (const vec3& u : {vec3{{1, 1, 1}}, vec3{{0.3, 0.3, 0.3}}, vec3{{0, 1, 0}}, vec3{{0.5, 0.75, 1}}}) {
    const vec3 got = inp2out_vec(sol.cmon, u);
    EXPECT_LT(dist2(got, syn_inp2out_vec(sol.mod_smon, u)) / dist2(got, {}), 1e-6);
  }
}

TEST(TwoTables, LuminanceIsAFractionOfTheBrightestGrayAndLeavesHeadroom) {
  const double top = ramptop_xyz(display, inside.white).xyz[1];
  for (const double lumfrac : {0.5, 0.95}) {  // enough room; then the largest row sum meets the margin
    const auto sol = twolutsolution(display, inside, {0, lumfrac, 0.05, 2.2, make_gamma_table(2.2, 256)}, 65);
    const double white = luminance(sol.mod_smon.primaries);
    const double largest = std::ranges::max((sol.matrix * vec3{{1, 1, 1}}).v);
    EXPECT_NEAR(lumfrac == 0.5 ? white / top : largest, lumfrac, 1e-12);
    EXPECT_NEAR(luminance(sol.ref_smon.primaries), white, 1e-11) << "the reference has the solution's luminance";
  }
}

TEST(TwoTables, UnreachablePrimariesAreMovedAndTheWhiteIsNot) {
  const auto sol = twolutsolution(display, outside, {}, 65);
  EXPECT_EQ(sol.status, 1) << "within the gamut, and the margin keeps entries from turning negative";
  const auto moved = rgb2c_type(sol.mod_smon.primaries);
  EXPECT_NEAR(uvdist(moved.red, outside.red), sol.distances[0], 1e-14);
  EXPECT_NEAR(uvdist(moved.green, outside.green), sol.distances[1], 1e-14);
  EXPECT_NEAR(uvdist(moved.blue, outside.blue), sol.distances[2], 1e-14);
  EXPECT_NEAR(uvdist(moved.white, outside.white), 0, 1e-14);
  EXPECT_EQ(twolutsolution(display, outside, {.boundary_tol = 1, .lut = {}}, 65).status, 0)
      << "no gamut left: negative entries";
}

TEST(TwoTables, ClippingKeepsColoursWithinReachAndTheWhite) {
  const auto sol = twolutsolution(display, outside, {.lut = {}, .mapping = gamut_mapping::clip}, 4097);
  EXPECT_EQ(sol.status, 1) << "negative entries are no fault here";
  EXPECT_EQ(sol.distances, vec3{});
  EXPECT_LT((display.XYZ2RGB * sol.ref_smon.primaries)(0, 1), 0) << "green is far outside";
  for (const vec3& u : {vec3{{1, 1, 1}}, vec3{{0.2, 0.2, 0.2}}, vec3{{0.6, 0.5, 0.55}}, vec3{{0.5, 0.6, 0.65}}}) {
    const vec3 want = syn_inp2out_vec(sol.ref_smon, u);
    EXPECT_LT(dist2(inp2out_vec(sol.cmon, u), want) / dist2(want, {}), 1e-4) << u[1];
  }
  const vec3 green = inp2out_vec(sol.cmon, {{0, 1, 0}}) - display.darklight;
  EXPECT_LT(length(chromaticity(green) - chromaticity(display.RGB2XYZ.col[1])), 1e-6) << "the display's own at most";
}

TEST(TwoTables, PostTablesInvertTheToneCurvesWhoseLeastSlopeBoundsTheirs) {
  const matrix exact = twolutsolution(display, inside, {}, 65).postlut;
  const matrix bound = twolutsolution(display, inside, {.lut = {}, .minslope = 0.2}, 65).postlut;
  for (std::size_t i = 1; i < 65; ++i) {
    const double x = static_cast<double>(i) / 64, rise = (bound(i, 1) - bound(i - 1, 1)) * 64;
    EXPECT_NEAR(ppval(display.inpcurve[1], exact(i, 1)), x, 1e-11);
    EXPECT_NEAR(bound(i, 1), exact(i, 1), x < 0.2 ? 0.2 : 0.02) << x;
    EXPECT_GT(rise, 0);
    EXPECT_LT(rise, 1.05 / 0.2);
  }
}

}  // namespace
}  // namespace corvantile
