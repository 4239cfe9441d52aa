#include <cmath>
#include <gtest/gtest.h>
#include <random>

#include "corvantile/monitor/prepared.hpp"
#include "corvantile/monitor/synthetic_monitor.hpp"
#include "tests/monitor/fitted.hpp"

namespace corvantile {
namespace {

TEST(FrontEnd, MapsThroughTableMatrixTable) {
  const mat3 swap{{vec3{{0, 1, 0}}, vec3{{1, 0, 0}}, vec3{{0.5, 0, 1}}}};  // column c is where channel c goes
  const lut twice{{0, 1}, {0, 2}}, plus{{0, 1}, {10, 11}};
  front_end fe{{twice, twice, twice}, {plus, plus, plus}, swap};
  EXPECT_EQ(femap_vec(fe, {{1, 2, 3}}), (vec3{{17, 12, 16}}));
  matrix pre, post;
  get3chluts(composite.fe, &pre, &post);
  set3chluts(fe, &pre);
  EXPECT_EQ(fe, (front_end{composite.fe.pre, {plus, plus, plus}, swap})) << "parts not given stay";
  set3chluts(fe, nullptr, &post, &composite.fe.matrix);
  EXPECT_EQ(fe, composite.fe) << "each table keeps its own length";
}

TEST(TableMaps, UndoEachOtherWhereColumnsAreStrictlyMonotone) {
  matrix t = bent_table(5, 0.25);
  EXPECT_EQ(lutmap_vec(t, {{0.5, 0.25, 0.75}}), (vec3{{0.5625, 0.34375, 0.890625}})) << "rows step from 0 to 1";
  EXPECT_EQ(invlutmap_vec(t, {{0.5625, 0.34375, 0.890625}}), (vec3{{0.5, 0.25, 0.75}}));
  t(3, 0) = t(2, 0);
  EXPECT_TRUE(std::isnan(invlutmap_vec(t, {})[0])) << "a tie has no inverse";
}

TEST(Transforms, PreparedMonitorsHaveTheBitsOfTheGeneralRoutinesAndInputsComeBack) {
  monitor mixed = plain;
  mixed.zcurve = fitted(uneven_display(), 8).zcurve;  // X and Z on different knots, as in a red without Z
  std::mt19937 random(3);
  std::uniform_real_distribution<double> value(-0.3, 1.3);
  matrix all = in_all_channels(linspace(0, 1, 51));  // includes ends and knots
  for (std::size_t i = 11; i < 50; ++i) set_row3(all, i, {{value(random), value(random), value(random)}});
  for (const monitor& mon : {plain, composite, mixed}) {
    const prepared_monitor prepared(mon);
    const matrix inp = mon2inp_mat(mon, all);
    for (std::size_t i = 0; i < all.rows(); ++i) {
      const vec3 u = row3(all, i), inside = 0.4 * u + vec3{{0.3, 0.3, 0.3}};
      EXPECT_EQ(prepared.inp2out(u[0], u[1], u[2]), inp2out_vec(mon, u));
      EXPECT_EQ(prepared.mon2out(u), mon2out_vec(mon, u));
      EXPECT_EQ(row3(inp, i), mon2inp_vec(mon, u));
      EXPECT_LT(dist2(mon2inp_vec(mon, inp2mon_vec(mon, inside)), inside), 1e-20);
      EXPECT_LT(dist2(quad_out2mon(mon, quadmon2out_vec(mon, inside)), inside), 1e-10);
    }
  }
  // Curves unlike those of a fit are evaluated in the plain way.
  monitor bent = composite, empty = plain;
  bent.inpcurve[1] = pp_to_power(bent.inpcurve[1], 2);
  bent.zcurve[2] = pp_to_power(bent.zcurve[2], 2);
  empty.xcurve[0] = {};
  const vec3 u{{0.2, 0.5, 0.7}};
  EXPECT_EQ(prepared_monitor(bent).inp2out(u[0], u[1], u[2]), inp2out_vec(bent, u));
  EXPECT_EQ(prepared_monitor(bent).mon2out(u), mon2out_vec(bent, u));
  EXPECT_EQ(prepared_monitor(bent).mon2inp(u), mon2inp_vec(bent, u));
  EXPECT_TRUE(std::isnan(prepared_monitor(empty).mon2out(u)[0]));
  EXPECT_EQ(prepared_monitor(empty).mon2out(u)[1], mon2out_vec(empty, u)[1]);
  EXPECT_EQ(mon2inp_vec(plain, {{2, 2, 2}})[1], 1 - 0x1p-40) << "out of reach: the last midpoint before the bound";
  EXPECT_EQ(inp2mon_vec(composite, {{1, 0, 1}}), inp2mon_vec(plain, femap_vec(composite.fe, {{1, 0, 1}})));
  double error = 0;
  EXPECT_EQ(quad_out2mon(plain, 3.0 * plain.whitepoint, &error)[2], 1) << "out of reach: clamped";
  EXPECT_GT(error, 1e4) << "and the error says so";
}

TEST(SyntheticMonitor, ShowsRowSumsOverItsBlackAndGoesBackEvenWhereItsTableIsFlat) {
  const mat3 primaries{{vec3{{41, 21, 2}}, vec3{{36, 72, 12}}, vec3{{18, 7, 95}}}};
  const lut flat{{0, 0.1, 0.4, 0.7, 1}, {0, 0, 0.2, 0.6, 1}}, rising{{0, 0.5, 1}, {0, 0.2, 1}};
  for (const lut& table : {rising, flat}) {
    const auto syn = make_synthetic_monitor(std::string(257, 'n'), primaries, table, {{0.5, 0.25, 1}});
    EXPECT_EQ(syn.name.size(), 256u);
    EXPECT_EQ(syn_inp2out_vec(syn, {{1, 1, 1}}), (vec3{{95.5, 100.25, 110}}));
    EXPECT_EQ(syn_whitepoint(syn), (vec3{{64, 120, 120}})) << "column sums";
    const vec3 u{{0.25, 0.9, 0.6}};
    const double off = dist2(syn_out2inp_vec(syn, syn_inp2out_vec(syn, u)), u);
    EXPECT_LT(off, table == rising ? 1e-28 : 1e-4);
    EXPECT_EQ(off > 1e-9, table == flat) << "a flat table is smoothed";
  }
}

}  // namespace
}  // namespace corvantile
