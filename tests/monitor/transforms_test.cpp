#include <cmath>
#include <gtest/gtest.h>
#include <random>

#include "monitor/prepared.hpp"
#include "tests/monitor/fitted.hpp"

namespace corvantile {
namespace {

// A plain display and the same behind a front end.
std::array<monitor, 2> both() {
  const monitor plain = fitted(uneven_display());
  return {plain, monwfe(plain, mild_front_end())};
}

std::vector<vec3> triples(double lowest, double highest) {
  std::mt19937 random(3);
  std::uniform_real_distribution<double> value(lowest, highest);
  std::vector<vec3> all{{{0, 0, 0}}, {{1, 1, 1}}, {{0.2, 0.4, 0.6}}};  // ends and knots
  for (int i = 0; i < 40; ++i) all.push_back({{value(random), value(random), value(random)}});
  return all;
}

TEST(Transforms, BatchesHaveTheBitsOfSinglesAndPreparedMonitorsOfBoth) {
  const auto inputs = triples(-0.3, 1.3);
  matrix batch(inputs.size(), 3);
  for (std::size_t i = 0; i < inputs.size(); ++i) set_row3(batch, i, inputs[i]);
  matrix table(9, 3);
  for (std::size_t i = 0; i < 9; ++i) {
    const auto v = static_cast<double>(i);
    set_row3(table, i, {{0.1 * v, 0.02 * v * v, 3 - v}});
  }
  for (const monitor& mon : both()) {
    SCOPED_TRACE(mon.composite);
    const prepared_monitor prepared(mon);
    const prepared_front_end end(mild_front_end());
    const std::array out{inp2mon_mat(mon, batch),  mon2out_mat(mon, batch),     inp2out_mat(mon, batch),
                         mon2inp_mat(mon, batch),  quadmon2out_mat(mon, batch), femap_mat(mild_front_end(), batch),
                         lutmap_mat(table, batch), invlutmap_mat(table, batch)};
    for (std::size_t i = 0; i < inputs.size(); ++i) {
      const vec3& u = inputs[i];
      const std::array single{inp2mon_vec(mon, u),  mon2out_vec(mon, u),     inp2out_vec(mon, u),
                              mon2inp_vec(mon, u),  quadmon2out_vec(mon, u), femap_vec(mild_front_end(), u),
                              lutmap_vec(table, u), invlutmap_vec(table, u)};
      for (std::size_t k = 0; k < out.size(); ++k) EXPECT_EQ(row3(out[k], i), single[k]) << k;
      EXPECT_EQ(prepared.inp2mon(u), single[0]);
      EXPECT_EQ(prepared.mon2out(u), single[1]);
    }
  }
}

TEST(Transforms, InputsComeBack) {
  for (const monitor& mon : both()) {
    for (const vec3& u : triples(0.01, 0.99)) {
      const vec3 back = mon2inp_vec(mon, inp2mon_vec(mon, u));
      for (std::size_t c = 0; c < 3; ++c) EXPECT_NEAR(back[c], u[c], mon.composite ? 1e-10 : 1e-12);
    }
  }
  const monitor mon = both()[0];
  EXPECT_EQ(mon2inp_vec(mon, {{2, 2, 2}})[1], 1 - 0x1p-40) << "out of reach: the last midpoint before the bound";
}

TEST(Transforms, ChannelsAddUpOverTheDark) {
  const monitor mon = both()[0];
  EXPECT_EQ(mon2out_vec(mon, {}), mon.darklight);
  EXPECT_EQ(quadmon2out_vec(mon, {}), mon.darklight);
  for (const vec3& m : triples(0, 1)) {
    for (const auto to_out : {mon2out_vec, quadmon2out_vec}) {
      vec3 sum = mon.darklight;
      for (std::size_t c = 0; c < 3; ++c) {
        vec3 alone;
        alone[c] = m[c];
        sum = sum + (to_out(mon, alone) - mon.darklight);
      }
      const vec3 whole = to_out(mon, m);
      for (std::size_t k = 0; k < 3; ++k) EXPECT_NEAR(whole[k], sum[k], 1e-12);
      EXPECT_EQ(whole[1], mon.Ymax[0] * m[0] + mon.Ymax[1] * m[1] + mon.Ymax[2] * m[2] + mon.darklight[1]);
    }
  }
  const vec3 full = mon.RGB2XYZ * vec3{{1, 1, 1}} + mon.darklight;
  for (std::size_t k = 0; k < 3; ++k) {
    EXPECT_NEAR(quadmon2out_vec(mon, {{1, 1, 1}})[k], full[k], 1e-12) << "whatever nX and nZ are";
  }
}

TEST(Transforms, TheQuadraticFormInverts) {
  const monitor mon = both()[0];
  for (const vec3& m : triples(0.05, 0.95)) {
    double error = -1;
    const vec3 back = quad_out2mon(mon, quadmon2out_vec(mon, m), &error);
    for (std::size_t c = 0; c < 3; ++c) EXPECT_NEAR(back[c], m[c], 1e-5);
    EXPECT_LT(error, 1e-6);
  }
  double error = 0;
  const vec3 m = quad_out2mon(mon, 3.0 * mon.whitepoint, &error);
  EXPECT_EQ(m[2], 1) << "out of reach: clamped, and the error says so";
  EXPECT_GT(error, 1e4);
}

}  // namespace
}  // namespace corvantile
