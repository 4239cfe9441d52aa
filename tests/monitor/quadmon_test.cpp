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
  d.dark_red_z = true;  // as wide-gamut reds come close to: there is no Z to form a ratio of
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
    m.data(extra, 4) = std::numeric_limits<double>::quiet_NaN();  // its colour is not even looked at
    const monitor mon = makemonitor(m);
    EXPECT_NEAR(mon.darklight[0], version == 1 ? 0.4 : 0.25, 1e-15);
    EXPECT_EQ(mon.rampin(4, 0), 0.5);
  }
}

TEST(MeasurementFile, IsReadAsOneStreamBehindComments) {
  const std::string ramp = "255 255 255 9 9 9 0 0 0 0 0 0\n", rest = "9 0 0 0 0 0 0 " + ramp + ramp + ramp;
  const matrix m = parse_measurements("m", "; one\n;two\n2,0,2 and more\n255\n255 255,9 9\n" + rest + "words").data;
  EXPECT_TRUE(std::ranges::equal(m.col(5), std::array{9, 0, 9, 0, 9, 0, 9, 0}));
  EXPECT_EQ(parse_measurements("m", "17 600 2\n408*1 3600*0").data.rows(), 668u) << "repeat counts";
  const auto header = [](std::size_t length) { return "2 0" + std::string(length - 4, ' ') + "2\n48*1"; };
  EXPECT_EQ(parse_measurements("m", header(1024)).version, 2);
  EXPECT_THROW(parse_measurements("m", header(1025)), failure) << "behind what counts of the line";
}

TEST(MeasurementFile, IsRefusedWhereItGivesNoModel) {
  const std::string w = "9 9 9 1.1 1.1 1.1 0 0 0 0 0 0\n", r = "9 0 0 .4 .2 .1 0 0 0 0 0 0\n",
                    g = "0 9 0 .1 .3 .1 0 0 0 0 0 0\n", b = "0 0 9 .1 .1 .7 0 0 0 0 0 0\n",
                    off = "0 0 0 0 0 0 0 0 0 0 0 0\n", rest = " 0 0 0 0 0 0\n";
  const std::pair<std::string, const char*> rows[] = {
      {"\n2 0 2\n" + w + r + g + b, "m: line 1: "},  // a blank line is no comment: it is the header
      {";\n2 0\n2\n" + w + r + g + b, "m: line 2: "},
      {"1 0 2\n" + w + r + g + b, "m: line 1: a ramp has 1 levels"},
      {";\n2 -1 2\n" + w + r + g + b, "m: line 2: the number of extra samples is -1"},
      {"2000000000 2000000000 1\n", "m: line 1: 2000000000 levels and 2000000000 extra"},
      {"2 0 2\n" + w + r + g + "0 0 9 9 9 9 0 0", "number 3 of 6 of sample 8"},
      {"2 0 2\n" + w + "9 x 0\n" + g + b, "number 2 of 6 of sample 3 (level 1 of the red ramp)"},
      {"2 0 2\nNaN 9 9 9 9 9" + rest + r + g + b, "m: sample 1 (level 1 of the white ramp): R is NaN"},
      {"2 0 2\n" + w + r + "0 9 0 9 9 Inf" + rest + b, "m: sample 5 (level 1 of the green ramp): Z is Inf"},
      {"3 0 2\n9 9 9 1 1 1 12*5\n5 0 0 4 2 1\n9 0 0 2 1 1\n42*0",
       "m: line 3: sample 4 (level 1 of the red ramp): drive 5 is not the highest of its ramp, sample 5"},
      {"3 0 2\n9 9 9 1 1 1 12*5\n9 0 0 4 2 1\n6*0\n5 5*0\n36*0",
       "m: line 5: sample 6 (level 3 of the red ramp): drive 5 is not the lowest of its ramp, sample 5"},
      {"2 0 2\n" + w + r + g + off, "m: the blue channel gets no brighter than the dark"},
      {"2 0 2\n" + off + r + g + b, "m: sample 1 (level 1 of the white ramp): X, Y, Z are 0 0 0, expected a white"},
      {"2 0 2\n9 9 9 -2 1.1 -2" + rest + r + g + b, "X, Y, Z are -2 1.1 -2, expected a white"},
      {"2 0 2\n" + off + off + off + off, "m: no drive value is above 0"},
      {"2 0 2\n" + w + r + g + "0 0 9 .5 .5 .2" + rest, "m: the three primaries lie on one line"}};
  for (const auto& [text, fragment] : rows) {
    try {
      makemonitor(parse_measurements("m", text));
      ADD_FAILURE() << text;
    } catch (const failure& stop) {
      EXPECT_EQ(stop.kind, fault::content);
      EXPECT_NE(stop.message.find(fragment), std::string::npos) << stop.message;
    }
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
