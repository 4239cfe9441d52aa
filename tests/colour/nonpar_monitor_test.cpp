#include "corvantile/colour/nonpar_monitor.hpp"

#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <span>
#include <tuple>

#include "corvantile/colour/chromaticity.hpp"
#include "corvantile/numerics/neldmead.hpp"
#include "tests/monitor/fitted.hpp"

namespace corvantile {
namespace {

TEST(Inversion, FindsWhatShowsAColour) {
  for (const monitor& mon : {plain, composite}) {
    for (const vec3& u : {vec3{{0.2, 0.5, 0.8}}, vec3{{0.97, 0.99, 0.98}}, vec3{{0.05, 0.04, 0.06}}}) {
      const vec3 target = inp2out_vec(mon, u);
      const inversion inp = out2inp(mon, target), m = out2mon(mon, target);
      EXPECT_LT(inp.fval, 1e-12);
      EXPECT_EQ(inp.fval, dist2(inp2out_vec(mon, inp.value), target));
      EXPECT_EQ(m.fval, dist2(mon2out_vec(mon, m.value), target));
      EXPECT_LT(dist2(inp.value, u), 1e-10);
      EXPECT_LT(dist2(m.value, inp2mon_vec(mon, u)), 1e-14);
    }
  }
}

TEST(Inversion, StartsWhereToldOrAtFullDrive) {
  const vec3 target = inp2out_vec(plain, {{0.3, 0.6, 0.4}}), linear = plain.XYZ2RGB * target;
  EXPECT_EQ(out2inp(plain, target).value, out2inp(plain, target, mon2inp_vec(plain, linear)).value);
  EXPECT_EQ(out2mon(plain, target).value, out2mon(plain, target, linear).value);
  EXPECT_NE(out2mon(plain, target).value, out2mon(plain, target, vec3{{0.4, 0.5, 0.4}}).value);
  const vec3 from_full = out2inp(plain, target, vec3{{0.4, 1, 0.4}}).value;
  EXPECT_NE(from_full, out2inp(plain, target, vec3{{0.4, 0, 0.4}}).value) << "0 is angle 0";
  EXPECT_EQ(from_full, out2inp(plain, target, vec3{{0.4, -0.1, 0.4}}).value);
  EXPECT_EQ(from_full, out2inp(plain, target, vec3{{0.4, std::nan(""), 0.4}}).value);
}

TEST(Inversion, HasTheBitsOfTheDefinitionInAndOutOfGamut) {
  for (const monitor& mon : {plain, composite}) {
    for (int i = 0; i < 40; ++i) {
      const vec3 u{{0.1 + 0.021 * i, 0.05 + std::fmod(0.37 * i, 0.9), 0.95 - std::fmod(0.23 * i, 0.9)}};
      const vec3 target = (i % 4 == 3 ? 1.4 : 1.0) * inp2out_vec(mon, u);
      const auto inputs = [](std::span<const double> a) {
        return vec3{{square_of_sine(a[0]), square_of_sine(a[1]), square_of_sine(a[2])}};
      };
      const auto cost = [&](std::span<const double> a) { return dist2(inp2out_vec(mon, inputs(a)), target); };
      const std::array start{angle_of(0.9 * u[0], 0), angle_of(u[1], 0), angle_of(u[2], 0)};
      const auto best = neldermead(cost, start, {.scale = 0.05, .tol = 1e-14, .maxit = 100000});
      const inversion found = out2inp(mon, target, vec3{{0.9 * u[0], u[1], u[2]}});
      EXPECT_EQ(found.value, inputs(best.xmin)) << i;
      EXPECT_EQ(found.fval, best.fmin) << i;
    }
  }
}

// The definition, with every trial inverted to its end.
ramp_top bisected(const monitor& mon, const vec3& base) {
  double lo = 0.1, hi = 2.0, k = 1.05;
  vec3 inp;
  for (int i = 0; i < 28; ++i) {
    const inversion trial = out2inp(mon, k * base);
    inp = trial.value;
    (trial.fval < 1e-7 ? lo : hi) = k;
    k = (lo + hi) / 2;
  }
  return {inp, inp2mon_vec(mon, inp), k * base};
}

TEST(RampTop, HasTheBitsOfTheDefinitionAlthoughMostTrialsEndEarly) {
  // Far brighter, or darker, than their white points say: the ends of the search.
  monitor dim = plain, bright = plain;
  dim.whitepoint = 0.1 * dim.whitepoint;
  bright.whitepoint = 100.0 * bright.whitepoint;
  for (const monitor& mon : {plain, composite, dim, bright}) {
    const ramp_top top = ramptop_temp(mon, 6500), want = bisected(mon, mon.whitepoint[1] * blackbody_color(6500));
    EXPECT_EQ(std::tuple(top.inp, top.m, top.xyz), std::tuple(want.inp, want.m, want.xyz));
    EXPECT_LT(dist2(ramptop_xyz(mon, blackbody_color(6500)).xyz, top.xyz), 1e-20);
  }
}

TEST(RampTop, TheSwathsIsTheBrightestOnItsLine) {
  const ramp_top best = bcgtw(plain, 6500, 0.01);
  const locus_swath swath = cct_segment(6500, 0.01);
  for (int i = 0; i <= 20; ++i) {
    const vec2 at = swath.at(swath.tmin + (swath.tmax - swath.tmin) * i / 20);
    EXPECT_LE(ramptop_xyz(plain, at).xyz[1], best.xyz[1] * (1 + 1e-6)) << i;
  }
}

TEST(GrayRamp, ShowsTheCurveTimesTheTopPlusTheWeightedDark) {
  const lut curve = make_gamma_table(2, 65);
  const vec2 warm{{0.33, 0.345}};
  matrix by_temperature(18, 3), by_swath(18, 3), by_chromaticity(18, 3);
  colortemp_lut(by_temperature, plain, 6500, curve, 0.4, 0);
  colortemp_lut(by_swath, plain, 6500, curve, 0.4, 0.005);
  chromaticity_lut(by_chromaticity, plain, warm, curve, 0.4);
  const std::pair<matrix, ramp_top> ramps[] = {{by_temperature, ramptop_temp(plain, 6500)},
                                               {by_swath, bcgtw(plain, 6500, 0.005)},
                                               {by_chromaticity, ramptop_xyz(plain, warm)}};
  for (const auto& [tab, top] : ramps) {
    EXPECT_EQ(row3(tab, 17), top.inp) << "no dark light at the top";
    for (std::size_t i = 0; i < 17; ++i) {
      const double s = static_cast<double>(i) / 17, w = s > 0.4 ? 0 : (std::cos(std::numbers::pi * s / 0.4) + 1) / 2;
      const vec3 target = interp(curve, s) * top.xyz + w * plain.darklight;
      EXPECT_LT(dist2(inp2out_vec(plain, row3(tab, i)), target), 1e-12 * dist2(target, {})) << i;
    }
  }
}

}  // namespace
}  // namespace corvantile
