#include "monitor/synthetic_monitor.hpp"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

namespace corvantile {
namespace {

const mat3 primaries{{vec3{{41, 21, 2}}, vec3{{36, 72, 12}}, vec3{{18, 7, 95}}}};

lut power_table(double gamma, std::size_t n) {
  lut t{linspace(0, 1, n), {}};
  for (const double x : t.x) t.y.push_back(std::pow(x, gamma));
  return t;
}

TEST(SyntheticMonitor, KeepsAtMost256CharactersOfItsName) {
  const std::string name = std::string(256, 'n') + "tail";
  const synthetic_monitor syn = make_synthetic_monitor(name, primaries, power_table(1, 2));
  EXPECT_EQ(syn.name, std::string(256, 'n'));
  EXPECT_EQ(syn.offset, vec3{}) << "no black level unless given";
  EXPECT_EQ(make_synthetic_monitor("short", primaries, {}).name, "short");
}

TEST(SyntheticMonitor, FullDriveShowsRowSumsAndTheWhitePointIsColumnSums) {
  const auto syn = make_synthetic_monitor("linear", primaries, power_table(1, 2));
  EXPECT_EQ(syn_inp2out_vec(syn, {{1, 1, 1}}), (vec3{{95, 100, 109}}));
  EXPECT_EQ(syn_whitepoint(syn), (vec3{{64, 120, 120}}));
}

TEST(SyntheticMonitor, AddsItsBlackAndExtendsItsTable) {
  const vec3 black{{0.5, 0.25, 1}};
  const auto syn = make_synthetic_monitor("black", primaries, power_table(1, 3), black);
  EXPECT_EQ(syn_inp2out_vec(syn, {}), black);
  EXPECT_EQ(syn_inp2out_vec(syn, {{2, 0, 0}}), 2.0 * primaries.col[0] + black) << "no clamping above full drive";
}

TEST(SyntheticMonitor, InverseUndoesIt) {
  lut flat = power_table(1, 41);  // dark end without any light: not invertible as it stands
  for (double& y : flat.y) y = std::max(0.0, (y - 0.1) / 0.9);
  const struct {
    lut table;
    double tol;
    const char* why;
  } rows[] = {{power_table(2.2, 256), 1e-14, "strictly rising: exact but for rounding"},
              {flat, 4e-3, "flat stretch: inverted through its smoothing, measured 3.4e-3 off"}};
  const vec3 inputs[] = {{{0.25, 0.5, 0.75}}, {{1, 0.9, 0.35}}, {{0.6, 0.6, 0.6}}};
  for (const auto& r : rows) {
    SCOPED_TRACE(r.why);
    const auto syn = make_synthetic_monitor("display", primaries, r.table, {{0.1, 0.2, 0.3}});
    matrix inp(std::size(inputs), 3);
    for (std::size_t i = 0; i < inp.rows(); ++i) set_row3(inp, i, inputs[i]);
    const matrix out = syn_inp2out_mat(syn, inp);
    const matrix back = syn_out2inp_mat(syn, out);
    for (std::size_t i = 0; i < inp.rows(); ++i) {
      EXPECT_EQ(row3(out, i), syn_inp2out_vec(syn, inputs[i])) << "batch and single agree";
      EXPECT_EQ(row3(back, i), syn_out2inp_vec(syn, row3(out, i)));
      for (std::size_t c = 0; c < 3; ++c) EXPECT_NEAR(back(i, c), inputs[i][c], r.tol);
    }
  }
}

}  // namespace
}  // namespace corvantile
