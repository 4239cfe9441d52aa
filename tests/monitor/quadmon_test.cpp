#include <gtest/gtest.h>
#include <limits>
#include <sstream>

#include "corvantile/utils/array_io.hpp"
#include "corvantile/utils/failure.hpp"
#include "tests/monitor/fitted.hpp"

namespace corvantile {
namespace {

TEST(Fit, RecoversTheDisplay) {
  simulated_display d = uneven_display();
  d.digits = 15;
  d.dark_red_z = true;  // nearly so in wide-gamut displays: there is no Z to form a ratio from
  d.nZ[0] = 0;
  const monitor mon = fitted(d, 8);
  EXPECT_EQ(mon.zcurve[0], makeppoly({0, 1}, {makepoly({0, 1})}));
  EXPECT_LT(dist2(mon.nX, d.nX) + dist2(mon.nZ, d.nZ), 5e-12);
  for (std::size_t c = 0; c < 3; ++c) EXPECT_LT(dist2(mon.RGB2XYZ.col[c], primaries(d).col[c]), 1e-20);
  for (const vec3& inp : {vec3{{1, 1, 1}}, vec3{{0.2, 0.5, 0.8}}, vec3{{0.9, 0, 0.4}}, vec3{}}) {
    EXPECT_LT(dist2(inp2out_vec(mon, inp), shown(d, inp)), 0.25) << "half a cd/m2";
  }
}

TEST(Fit, PinsTheDarkEndWhateverItReadsAndBoundsTheToneCurvesOnly) {
  measurements m = measured({});
  m.data(2 * 17 - 1, 4) += 0.4;  // the dark end of the red ramp, by half a percent of its range
  const monitor free = makemonitor(m), bound = makemonitor(m, 5, 0.1);
  EXPECT_EQ(bound.rampy(0, 0), 0);
  EXPECT_LT(ppval(ppder(free.inpcurve[1]), 0), 0.02);
  EXPECT_GT(ppval(ppder(bound.inpcurve[1]), 0), 0.09);
  EXPECT_EQ(bound.xcurve[1], free.xcurve[1]);
}

TEST(Fit, AveragesTheDarkOverAllRampsAndTakesOnlyTheDriveScaleFromExtraSamples) {
  for (const int version : {1, 2}) {
    measurements m = measured({.levels = 5, .version = version, .extra = 1});
    const std::size_t extra = m.data.rows() - 1;
    for (std::size_t r = 0; r < extra / 5; ++r) m.data(5 * r + 4, 3) = 0.1 * static_cast<double>(r + 1);
    m.data(extra, 1) = 510;
    m.data(extra, 4) = std::numeric_limits<double>::quiet_NaN();  // its colour is not used at all
    const monitor mon = makemonitor(m);
    EXPECT_NEAR(mon.darklight[0], version == 1 ? 0.4 : 0.25, 1e-15);
    EXPECT_EQ(mon.rampin(4, 0), 0.5);
  }
}

TEST(FixLowEnd, ACubicThroughTheOriginIsKept) {
  // Its chord from sample 5 to 6 must be its slope at sample 5: A x^2 + B x^3 between 1 and 3 with A = -5 B.
  std::array<double, 6> x{0, 0.25, 0.5, 0.75, 1, 3}, y{};
  for (std::size_t i = 0; i < 6; ++i) y[i] = 5 * x[i] * x[i] - x[i] * x[i] * x[i];
  for (std::size_t i = 0; i < 5; ++i) EXPECT_NEAR(fixlowend(x, y)[i], y[i], 1e-14) << i;
}

TEST(Dump, ListsNameColoursAndMatrices) {
  monitor mon;
  mon.name = "m  ";
  std::string want = "m\n";
  const char* labels[] = {"whitepoint", "darklight", "Xmax", "Ymax", "Zmax", "nX", "nZ"};
  vec3* values[] = {&mon.whitepoint, &mon.darklight, &mon.Xmax, &mon.Ymax, &mon.Zmax, &mon.nX, &mon.nZ};
  for (std::size_t i = 0; i < 7; ++i) {
    *values[i] = {{1, 0.25, -0.01 * static_cast<double>(i)}};
    want += std::string(labels[i]) + " = 1.00000000   .25000000   -.0" + std::to_string(i) + "000000\n";
  }
  mon.RGB2XYZ = {{vec3{{1, 2, 3}}, vec3{{4, 5, 6}}, vec3{{7, 8, 9}}}};
  mon.XYZ2RGB = mon.fe.matrix = mon.RGB2XYZ / 10;
  want += "RGB2XYZ:\n 1 4 7\n 2 5 8\n 3 6 9\nXYZ2RGB:\n 0.1 0.4 0.7\n 0.2 0.5 0.8\n 0.3 0.6 0.9\n";
  for (const bool composite : {false, true}) {
    mon.composite = composite;
    std::ostringstream out;
    dumpmon(out, mon);
    EXPECT_EQ(out.str(),
              composite ? "m\nComposite\n" + prtmat_real(mon.fe.matrix, "with matrix: ") + want.substr(2) : want);
  }
}

}  // namespace
}  // namespace corvantile
