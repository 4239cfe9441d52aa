#include "colour/nonpar_monitor.hpp"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <numbers>

#include "colour/chromaticity.hpp"
#include "tests/monitor/fitted.hpp"

namespace corvantile {
namespace {

const monitor& plain() {
  static const monitor mon = fitted(uneven_display());
  return mon;
}
const monitor& composite() {
  static const monitor mon = monwfe(plain(), mild_front_end());
  return mon;
}

double relative_error(const vec3& got, const vec3& want) { return std::sqrt(dist2(got, want) / dist2(want, {})); }

TEST(Inversion, FindsWhatShowsAColour) {
  for (const monitor* mon : {&plain(), &composite(), &plain()}) {
    for (const vec3& u :
         {vec3{{0.2, 0.5, 0.8}}, vec3{{0.9, 0.1, 0.3}}, vec3{{0.97, 0.99, 0.98}}, vec3{{0.05, 0.04, 0.06}}}) {
      const vec3 target = inp2out_vec(*mon, u);
      const inversion inp = out2inp(*mon, target), m = out2mon(*mon, target);
      EXPECT_LT(inp.fval, 1e-12);
      EXPECT_EQ(inp.fval, dist2(inp2out_vec(*mon, inp.value), target));
      EXPECT_EQ(m.fval, dist2(mon2out_vec(*mon, m.value), target));
      for (std::size_t c = 0; c < 3; ++c) {
        EXPECT_NEAR(inp.value[c], u[c], 1e-5);
        EXPECT_NEAR(m.value[c], inp2mon_vec(*mon, u)[c], 1e-7);
      }
    }
  }
}

TEST(Inversion, OutOfGamutGivesTheClosestReachableColour) {
  const struct {
    vec3 target;
    const char* why;
  } rows[] = {{{{30, 190, 5}}, "greener than green: negative red and blue start at full drive"},
              {2.0 * plain().whitepoint, "brighter than white"},
              {0.5 * plain().darklight, "darker than the dark"}};
  for (const auto& r : rows) {
    SCOPED_TRACE(r.why);
    const inversion best = out2inp(plain(), r.target);
    EXPECT_GT(best.fval, 1e-3);
    for (std::size_t c = 0; c < 3; ++c) {
      for (const double step : {-0.01, 0.01}) {
        vec3 near = best.value;
        near[c] = std::clamp(near[c] + step, 0.0, 1.0);
        EXPECT_GE(dist2(inp2out_vec(plain(), near), r.target), best.fval * (1 - 1e-9)) << c;
      }
    }
  }
}

TEST(Inversion, StartsWhereToldOrAtFullDrive) {
  const vec3 target = inp2out_vec(plain(), {{0.3, 0.6, 0.4}});
  const vec3 by_linear_model = plain().XYZ2RGB * target;
  EXPECT_EQ(out2inp(plain(), target).value, out2inp(plain(), target, mon2inp_vec(plain(), by_linear_model)).value);
  EXPECT_EQ(out2mon(plain(), target).value, out2mon(plain(), target, by_linear_model).value);
  const vec3 from_full = out2inp(plain(), target, vec3{{0.4, 1, 0.4}}).value;
  EXPECT_NE(from_full, out2inp(plain(), target, vec3{{0.4, 0, 0.4}}).value) << "0 is angle 0";
  for (const double odd : {7.0, -0.1, std::nan("")}) {
    EXPECT_EQ(out2inp(plain(), target, vec3{{0.4, odd, 0.4}}).value, from_full) << odd;
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

TEST(RampTop, HasTheWhiteAskedForAndLiesOnTheEdgeOfTheGamut) {
  for (const monitor* mon : {&plain(), &composite()}) {
    for (const double T : {4000.0, 6500.0, 12000.0}) {
      SCOPED_TRACE(T);
      const vec3 black_body = blackbody_color(T);
      const ramp_top top = ramptop_temp(*mon, T);
      const vec3 base = mon->whitepoint[1] * black_body;
      const ramp_top want = bisected(*mon, base);
      EXPECT_EQ(top.inp, want.inp) << "the same bits, although most trials end early";
      EXPECT_EQ(top.m, want.m);
      EXPECT_EQ(top.xyz, want.xyz);

      EXPECT_LT(relative_error(top.xyz / top.xyz[1], black_body), 1e-15);
      EXPECT_LT(relative_error(inp2out_vec(*mon, top.inp), top.xyz), 1e-5);
      EXPECT_LT(out2inp(*mon, 0.9999 * top.xyz).fval, 1e-7) << "a step darker is reachable";
      EXPECT_GT(out2inp(*mon, 1.0001 * top.xyz).fval, 1e-7) << "a step brighter is not";
      if (mon == &plain()) {
        EXPECT_GT(std::ranges::max(top.inp.v), 0.9999) << "a channel at full drive";
      }

      const vec2 xy = *xyz2xy(black_body);
      EXPECT_LT(relative_error(ramptop_xyz(*mon, xy.v).xyz, top.xyz), 1e-7) << "asked for as x, y";
      EXPECT_LT(relative_error(ramptop_xyz(*mon, (7.0 * black_body).v).xyz, top.xyz), 1e-7) << "and as X, Y, Z";
    }
  }
}

TEST(RampTop, IsLookedForBetweenATenthAndTwiceTheWhite) {
  for (const double factor : {0.1, 100.0}) {  // a display far brighter, or darker, than its white point says
    monitor mon = plain();
    mon.whitepoint = factor * mon.whitepoint;
    const double scale = ramptop_temp(mon, 6500).xyz[1] / mon.whitepoint[1];
    EXPECT_NEAR(scale, factor < 1 ? 2.0 : 0.1, 2e-8);
  }
}

TEST(RampTop, TheSwathsIsBrighterThanTheLocuss) {
  const double T = 6500, width = 0.01;
  const ramp_top on_locus = ramptop_temp(plain(), T), best = bcgtw(plain(), T, width);
  EXPECT_GT(best.xyz[1], on_locus.xyz[1] * 1.001);
  const locus_swath swath = cct_segment(T, width);
  for (int i = 0; i <= 20; ++i) {
    const double t = swath.tmin + (swath.tmax - swath.tmin) * i / 20;
    EXPECT_LE(ramptop_xyz(plain(), (swath.p + t * swath.ray).v).xyz[1], best.xyz[1] * (1 + 1e-6)) << i;
  }
  const vec2 away = *xyz2xy(best.xyz) - swath.p;
  EXPECT_NEAR(away[0] * swath.ray[1] - away[1] * swath.ray[0], 0, 1e-12) << "on the line";
  EXPECT_LT(relative_error(inp2out_vec(plain(), best.inp), best.xyz), 1e-5);
}

TEST(GammaTable, IsThePowerLaw) {
  const lut identity = make_gamma_table(1.0, 256);
  EXPECT_EQ(identity.x.size(), 256u);
  EXPECT_EQ(identity.x, identity.y);
  EXPECT_EQ(make_gamma_table(2.2, 2), (lut{{0, 1}, {0, 1}}));
  EXPECT_EQ(make_gamma_table(2, 5).y, (std::vector<double>{0, 0.0625, 0.25, 0.5625, 1}));
}

TEST(GrayRamp, ShowsTheCurveTimesTheTopPlusTheWeightedDark) {
  const lut curve = make_gamma_table(2.2, 64);
  const vec2 warm{{0.33, 0.345}};
  for (const monitor* mon : {&plain(), &composite()}) {
    for (const double g0 : {0.5, 0.0, 2.0}) {
      matrix by_temperature(18, 3), by_swath(18, 3), by_chromaticity(18, 3);
      colortemp_lut(by_temperature, *mon, 6500, curve, g0, 0);
      colortemp_lut(by_swath, *mon, 6500, curve, g0, 0.005);
      chromaticity_lut(by_chromaticity, *mon, warm.v, curve, g0);
      const struct {
        const matrix& tab;
        ramp_top top;
        const char* why;
      } rows[] = {{by_temperature, ramptop_temp(*mon, 6500), "no swath: the locus itself"},
                  {by_swath, bcgtw(*mon, 6500, 0.005), "swath"},
                  {by_chromaticity, ramptop_xyz(*mon, warm.v), "chromaticity"}};
      for (const auto& r : rows) {
        SCOPED_TRACE(r.why);
        EXPECT_EQ(row3(r.tab, 17), r.top.inp) << "without any dark, whatever g0 is";
        for (std::size_t i = 0; i < 17; ++i) {
          const double s = static_cast<double>(i) / 17;
          const double w = s == 0 ? 1 : s <= g0 ? (std::cos(std::numbers::pi * s / g0) + 1) / 2 : 0;
          const vec3 target = interp(curve, s) * r.top.xyz + w * mon->darklight;
          if (target[1] < 1.5 * mon->darklight[1] && i > 0) continue;  // g0 = 0: darker than the dark, out of reach
          EXPECT_LT(relative_error(inp2out_vec(*mon, row3(r.tab, i)), target), 1e-6) << "g0 " << g0 << ", row " << i;
        }
      }
    }
  }
}

}  // namespace
}  // namespace corvantile
