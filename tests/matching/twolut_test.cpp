#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

#include "colour/nonpar_monitor.hpp"
#include "matching/matching.hpp"
#include "tests/monitor/fitted.hpp"

namespace corvantile {
namespace {

constexpr std::size_t tlen = 65;

// The display's gamut is that of sRGB; the first target lies inside it, the second far outside.
const chromaticity_table inside{{{{0.6, 0.34}}, {{0.31, 0.55}}, {{0.17, 0.1}}, {{0.32, 0.335}}}};
const chromaticity_table outside{{{{0.7, 0.29}}, {{0.17, 0.78}}, {{0.13, 0.04}}, {{0.3127, 0.329}}}};

const monitor& mon() {
  static const monitor fit = [] {
    simulated_display d = uneven_display();
    d.nX = d.nZ = {};  // chromaticities independent of level: what a matrix in linear light assumes
    d.black_luminance = 0;
    d.digits = 12;
    return fitted(d, 8);
  }();
  return fit;
}

gspec with_curve(double gamma) {
  gspec spec;
  spec.lut = make_gamma_table(gamma, 256);
  return spec;
}

double luminance(const mat3& m) { return m(1, 0) + m(1, 1) + m(1, 2); }
double row_sum(const mat3& m, std::size_t i) { return m(i, 0) + m(i, 1) + m(i, 2); }

TEST(TwoTables, TheCorrectedDisplayShowsTheTarget) {
  constexpr std::size_t fine = 1025;
  const auto sol = twolutsolution(mon(), inside, with_curve(2.2), fine);
  EXPECT_EQ(sol.status, 1);
  EXPECT_EQ(sol.distances, vec3{}) << "all reachable";
  EXPECT_EQ(sol.cmon.name, "frontend on simulated");
  EXPECT_TRUE(sol.cmon.composite);
  const double white = luminance(sol.mod_smon.primaries);
  for (std::size_t i = 0; i < fine; ++i) {
    const double u = static_cast<double>(i) / (fine - 1);
    const double T = interp(sol.ref_smon.table, u);
    EXPECT_EQ(row3(sol.prelut, i), (vec3{{T, T, T}})) << "the target's curve, channel by channel";
    if (u < 0.2) continue;  // near black even this table has too few points for the steep inverse curve
    const vec3 xyz = inp2out_vec(sol.cmon, {{u, u, u}});
    EXPECT_NEAR(xyz[1] / (white * T), 1, 0.001) << i;
    const double sum = xyz[0] + xyz[1] + xyz[2];
    EXPECT_NEAR(xyz[0] / sum, inside[3][0], 1e-4) << i;
    EXPECT_NEAR(xyz[1] / sum, inside[3][1], 1e-4) << i;
  }
  for (const vec3& u : {vec3{{1, 0, 0}}, vec3{{0, 1, 0}}, vec3{{0.5, 0.75, 1}}}) {
    const vec3 got = inp2out_vec(sol.cmon, u), want = syn_inp2out_vec(sol.mod_smon, u);
    EXPECT_LT(std::sqrt(dist2(got, want)), 0.001 * white) << "and not only on the gray axis";
  }
  const vec3 back = mon2inp_vec(sol.cmon, inp2mon_vec(sol.cmon, {{0.4, 0.6, 0.8}}));
  for (std::size_t c = 0; c < 3; ++c) EXPECT_NEAR(back[c], (vec3{{0.4, 0.6, 0.8}})[c], 1e-9);
}

TEST(TwoTables, LuminanceIsAFractionOfTheBrightestGrayAndLeavesHeadroom) {
  const double top = ramptop_xyz(mon(), inside[3].v).xyz[1];
  const struct {
    double lumfrac, margin;
    bool capped;
    const char* why;
  } rows[] = {{0.5, 0.05, false, "half the brightest: room enough"},
              {0.95, 0.05, true, "the largest row sum meets the margin"},
              {1.0, 0.3, true, "a wide margin"}};
  for (const auto& r : rows) {
    SCOPED_TRACE(r.why);
    gspec spec = with_curve(2.2);
    spec.boundary_tol = 0;
    spec.lumfrac = r.lumfrac;
    spec.rowsum_margin = r.margin;
    const auto sol = twolutsolution(mon(), inside, spec, tlen);
    const double largest = std::max({row_sum(sol.matrix, 0), row_sum(sol.matrix, 1), row_sum(sol.matrix, 2)});
    const double white = luminance(sol.mod_smon.primaries);
    if (r.capped) {
      EXPECT_NEAR(largest, 1 - r.margin, 1e-14);
      EXPECT_LT(white, top * r.lumfrac * (1 + 1e-12));
    } else {
      EXPECT_LT(largest, 1 - r.margin);
      EXPECT_NEAR(white, top * r.lumfrac, 1e-11);
    }
    EXPECT_NEAR(luminance(sol.ref_smon.primaries), white, 1e-11) << "the reference has the solution's luminance";
    const mat3 shown = mon().RGB2XYZ * sol.matrix, asked = c2rgb_type(inside) * white;
    for (std::size_t c = 0; c < 3; ++c) {
      EXPECT_LT(dist2(shown.col[c], asked.col[c]), 1e-20) << "the matrix makes the target's primaries";
    }
  }
}

TEST(TwoTables, UnreachablePrimariesAreMovedAndTheWhiteIsNot) {
  const auto sol = twolutsolution(mon(), outside, with_curve(2.2), tlen);
  EXPECT_EQ(sol.status, 1) << "within the gamut, thanks to the margin no entry is negative";
  const auto want = rgb2c_type(sol.ref_smon.primaries), moved = rgb2c_type(sol.mod_smon.primaries);
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_LT(uvdist(want[i], outside[i]), 1e-14);
    EXPECT_NEAR(uvdist(moved[i], outside[i]), i < 3 ? sol.distances[i] : 0, 1e-14);
    EXPECT_TRUE(i == 3 || sol.distances[i] > 0.01);
  }
  gspec spec = with_curve(2.2);
  spec.boundary_tol = 1;  // a margin that leaves no gamut
  EXPECT_EQ(twolutsolution(mon(), outside, spec, tlen).status, 0) << "negative entries";
}

TEST(TwoTables, WithoutAToneTableThePowerLawServes) {
  gspec spec;
  spec.gamma = 1.8;
  const auto sol = twolutsolution(mon(), inside, spec, tlen);
  const auto same = twolutsolution(mon(), inside, with_curve(1.8), 256);
  EXPECT_EQ(sol.prelut(32, 1), std::pow(0.5, 1.8));
  EXPECT_EQ(sol.matrix, same.matrix);
  EXPECT_EQ(sol.ref_smon.table.x.size(), tlen);
}

TEST(TwoTables, PostTablesInvertTheToneCurves) {
  gspec spec = with_curve(2.2);
  const auto plain = twolutsolution(mon(), inside, spec, tlen);
  spec.minslope = 0.2;
  const auto smoothed = twolutsolution(mon(), inside, spec, tlen);
  for (std::size_t i = 0; i < tlen; ++i) {
    const double x = static_cast<double>(i) / (tlen - 1);
    for (std::size_t c = 0; c < 3; ++c) {
      EXPECT_NEAR(ppval(mon().inpcurve[c], plain.postlut(i, c)), x, 1e-11);
      EXPECT_NEAR(smoothed.postlut(i, c), plain.postlut(i, c), x < 0.2 ? 0.2 : 0.02) << x;
      if (i == 0) continue;
      const double rise = (smoothed.postlut(i, c) - smoothed.postlut(i - 1, c)) * (tlen - 1);
      EXPECT_GT(rise, 0);
      EXPECT_LT(rise, 1.05 / 0.2) << "a least forward slope bounds the inverse's";
    }
  }
  EXPECT_EQ(smoothed.matrix, plain.matrix);
}

}  // namespace
}  // namespace corvantile
