#include <cmath>
#include <fstream>
#include <gtest/gtest.h>
#include <limits>
#include <optional>

#include "tests/monitor/fitted.hpp"
#include "utils/text.hpp"

namespace corvantile {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

std::string file_with(const std::string& text) {
  const std::string name = ::testing::TempDir() + "quadmon_test.txt";
  std::ofstream(name) << text;
  return name;
}

template <class F>
std::optional<stop_run> stop_of(const F& f) {
  try {
    f();
    return std::nullopt;
  } catch (const stop_run& stop) {
    return stop;
  }
}

TEST(Fit, RecoversTheDisplay) {
  simulated_display d = uneven_display();
  d.digits = 15;
  const monitor mon = fitted(d, 8);
  for (std::size_t c = 0; c < 3; ++c) {
    SCOPED_TRACE(c);
    EXPECT_NEAR(mon.nX[c], d.nX[c], 1e-6) << "the known quadratic";
    EXPECT_NEAR(mon.nZ[c], d.nZ[c], 1e-6);
    for (const matrix* ramp : {&mon.rampin, &mon.rampy, &mon.rampx, &mon.rampz}) {
      EXPECT_EQ(ramp->col(c).front(), 0) << "pinned";
      EXPECT_EQ(ramp->col(c).back(), 1);
    }
    for (std::size_t k = 0; k < 3; ++k) {
      EXPECT_NEAR(mon.RGB2XYZ(k, c), primaries(d)(k, c), 1e-10);
      EXPECT_NEAR((mon.XYZ2RGB * mon.RGB2XYZ)(k, c), k == c ? 1 : 0, 1e-14);
    }
  }
  for (const vec3& inp : {vec3{{1, 1, 1}}, vec3{{0.2, 0.5, 0.8}}, vec3{{0.9, 0, 0.4}}, vec3{}}) {
    const vec3 want = shown(d, inp), got = inp2out_vec(mon, inp);
    for (std::size_t k = 0; k < 3; ++k) EXPECT_NEAR(got[k], want[k], 0.002 * d.white_luminance);
  }
  EXPECT_EQ(mon.whitepoint, (vec3{{mon.xyz(0, 0), mon.xyz(0, 1), mon.xyz(0, 2)}}));
  EXPECT_FALSE(mon.composite);
  EXPECT_EQ(mon.fe, front_end{});
}

TEST(Fit, PinsTheDarkEndWhateverItReadsAndBoundsTheToneCurvesOnly) {
  measurements m = measured(simulated_display{});
  const std::size_t n = 17, red_dark = 2 * n - 1;
  m.data(red_dark, 4) += 0.4;  // half a percent of red
  const monitor mon = makemonitor(m, 5, 0.1);
  EXPECT_EQ(mon.rampy(0, 0), 0);
  EXPECT_EQ(ppval(mon.inpcurve[0], 0), 0);
  EXPECT_EQ(mon.minslope, 0.1);
  const ppoly free = fitted({}).inpcurve[1], bound = mon.inpcurve[1];
  EXPECT_LT(ppval(ppder(free), 0), 0.02);
  EXPECT_GT(ppval(ppder(bound), 0), 0.09);
}

TEST(Fit, TheDarkIsTheMeanOfEveryRampsLastSample) {
  for (const int version : {1, 2}) {
    simulated_display d;
    d.version = version;
    d.levels = 5;
    d.extra = 3;
    measurements m = measured(d);
    const std::size_t ramps = version == 1 ? 7 : 4;
    for (std::size_t r = 0; r < ramps; ++r) m.data(5 * r + 4, 3) = 0.1 * static_cast<double>(r + 1);
    const monitor mon = makemonitor(m);
    EXPECT_NEAR(mon.darklight[0], version == 1 ? 0.4 : 0.25, 1e-15);
    EXPECT_EQ(mon.nextra, 3);
  }
}

TEST(Fit, ExtraSamplesTakePartInTheDriveScaleOnly) {
  simulated_display d;
  d.extra = 2;
  measurements m = measured(d);
  const monitor plain = makemonitor(m);
  const std::size_t extra = m.data.rows() - 1;
  m.data(extra, 1) = 510;
  for (std::size_t c = 3; c < 6; ++c) m.data(extra, c) = nan;  // their colours are not even looked at
  const monitor scaled = makemonitor(m);
  EXPECT_EQ(scaled.rampin(16, 0), 0.5);
  EXPECT_EQ(scaled.rampy, plain.rampy);
  EXPECT_EQ(scaled.RGB2XYZ, plain.RGB2XYZ);
}

TEST(Fit, TheTwoDefaultNumbersOfPiecesDiffer) {
  const std::string file = file_with(measurement_file({}));
  const monitor loaded = loadmonitor(file);
  EXPECT_EQ(loaded.name, file);
  EXPECT_EQ(loaded.numsegs, 8);
  EXPECT_EQ(pp_poly_count(loaded.inpcurve[2]), 8);
  const monitor made = makemonitor(load_measurements(file));
  EXPECT_EQ(made.numsegs, 5);
  EXPECT_EQ(pp_poly_count(made.zcurve[0]), 5);
  EXPECT_EQ(loadmonitor(file, 5).inpcurve, made.inpcurve);
}

TEST(Fit, AComponentWithoutRangeGetsTheIdentity) {
  simulated_display d = uneven_display();
  d.dark_red_z = true;  // as wide-gamut reds come close to
  const monitor mon = fitted(d);
  EXPECT_EQ(mon.Zmax[0], 0);
  EXPECT_EQ(mon.nZ[0], 0);
  EXPECT_EQ(mon.zcurve[0], makeppoly({0, 1}, {makepoly({0, 1})}));
  const vec3 white = inp2out_vec(mon, {{1, 1, 1}});
  for (std::size_t k = 0; k < 3; ++k) EXPECT_NEAR(white[k], mon.whitepoint[k], 2e-3) << "readings have six digits";
}

TEST(Fit, RefusesSamplesThatGiveNoModel) {
  const auto with = [](std::size_t row, std::size_t column, double value) {
    measurements m = measured({});
    m.data(row, column) = value;
    return m;
  };
  measurements dark_blue = measured({}), no_drive = dark_blue, flat = dark_blue, third = dark_blue;
  for (std::size_t i = 51; i < 68; ++i) {
    for (std::size_t c = 3; c < 6; ++c) dark_blue.data(i, c) = dark_blue.data(67, c);
    for (std::size_t c = 3; c < 6; ++c) flat.data(i, c) = flat.data(i - 17, c);  // blue is as green as green
  }
  for (std::size_t c = 0; c < 3; ++c) std::ranges::fill(no_drive.data.col(c), 0.0);
  third.version = 3;
  const struct {
    measurements m;
    int status;
    const char* fragment;
  } rows[] = {{with(0, 0, nan), 5, "sample 1 (level 1 of the white ramp): R is NaN"},
              {with(20, 5, HUGE_VAL), 5, "sample 21 (level 4 of the red ramp): Z is Inf"},
              {dark_blue, 5, "the blue channel gets no brighter than the dark"},
              {no_drive, 5, "no drive value is above 0"},
              {flat, 5, "the three primaries lie on one line"},
              {third, 0, "STOP improper version number"}};
  for (const auto& r : rows) {
    SCOPED_TRACE(r.fragment);
    const auto stop = stop_of([&] { makemonitor(r.m); });
    ASSERT_TRUE(stop);
    EXPECT_EQ(stop->status, r.status);
    EXPECT_NE(stop->message.find(r.fragment), std::string::npos) << stop->message;
  }
}

TEST(MeasurementFile, IsReadAsOneStreamBehindComments) {
  const std::string ramp = "255 255 255 9 9 9 0 0 0 0 0 0\n";
  const struct {
    std::string text;
    const char* why;
  } good[] = {
      {"2 0 2\n" + ramp + ramp + ramp + ramp, "no comment; two samples on a line"},
      {"; one\n;two\n2,0,2 and more\n" + ramp + ramp + ramp + ramp + "trailing words", "what follows is ignored"},
      {"2 0 2\n255\n255 255,9 9\n9 0 0 0 0 0 0 " + ramp + ramp + ramp, "line ends anywhere"}};
  for (const auto& r : good) {
    const measurements m = load_measurements(file_with(r.text));
    EXPECT_EQ(m.nramp, 2) << r.why;
    EXPECT_EQ(m.version, 2) << r.why;
    ASSERT_EQ(m.data.rows(), 8u) << r.why;
    for (std::size_t i = 0; i < 8; ++i) EXPECT_EQ(m.data(i, 5), i % 2 == 0 ? 9 : 0) << r.why;
  }

  const struct {
    std::string text;
    int status;
    const char* fragment;
    const char* why;
  } bad[] = {
      {"", 5, "header", "empty"},
      {"\n2 0 2\n" + ramp, 5, "header", "a blank line is no comment: it is the header"},
      {" ; late\n2 0 2\n", 5, "header", "neither is a line with a blank before the semicolon"},
      {"2 0\n2\n" + ramp, 5, "header", "the header's integers stand on one line"},
      {"2 0 3\n", 0, "STOP improper version number", "before any sample is read"},
      {"1 0 2\n" + ramp, 5, "line 1: a ramp has 1 levels", "no ramp"},
      {"; c\n2 -1 2\n" + ramp, 5, "line 2: the number of extra samples is -1", "negative count"},
      {"2000000000 2000000000 1\n" + ramp, 5, "more than the file can hold", "no memory is asked for"},
      {"2 0 2\n" + ramp + ramp + ramp + "255 255 255 9 9 9 0 0", 5, "number 3 of 6 of sample 8", "ends too early"},
      {"2 0 2\n" + ramp + "255 x 0\n" + ramp + ramp, 5, "number 2 of 6 of sample 3 (level 1 of the red ramp)",
       "no number"}};
  for (const auto& r : bad) {
    SCOPED_TRACE(r.why);
    const auto stop = stop_of([&] { load_measurements(file_with(r.text)); });
    ASSERT_TRUE(stop);
    EXPECT_EQ(stop->status, r.status);
    EXPECT_EQ(stop->to, stop_run::stream::err);
    EXPECT_NE(stop->message.find(r.fragment), std::string::npos) << stop->message;
  }
  const auto missing = stop_of([] { loadmonitor("no/such/file  "); });
  ASSERT_TRUE(missing);
  EXPECT_EQ(missing->message, " Cannot open no/such/file");
  EXPECT_EQ(missing->status, 0);
  EXPECT_EQ(missing->to, stop_run::stream::out);
}

TEST(FixLowEnd, ACubicThroughTheOriginIsKept) {
  // Its chord from sample 5 to 6 must be its slope at sample 5: A x^2 + B x^3 between 1 and 3 with A = -5 B.
  std::array<double, 6> x{0, 0.25, 0.5, 0.75, 1, 3}, y{};
  for (std::size_t i = 0; i < 6; ++i) y[i] = 5 * x[i] * x[i] - x[i] * x[i] * x[i];
  const auto fixed = fixlowend(x, y);
  for (std::size_t i = 0; i < 5; ++i) EXPECT_NEAR(fixed[i], y[i], 1e-14) << i;
}

TEST(Dump, NamesAFrontEndOnlyWhereThereIsOne) {
  const monitor mon = fitted({});
  ::testing::internal::CaptureStdout();
  dumpmon(mon);
  const std::string plain = ::testing::internal::GetCapturedStdout();
  ::testing::internal::CaptureStdout();
  dumpmon(monwfe(mon, mild_front_end()));
  const std::string composite = ::testing::internal::GetCapturedStdout();
  EXPECT_TRUE(plain.starts_with("simulated\nwhitepoint = 237.61")) << plain;
  EXPECT_NE(plain.find("\ndarklight = "), std::string::npos);
  EXPECT_TRUE(composite.starts_with("simulated\nComposite\nwith matrix: ")) << composite;
  EXPECT_TRUE(composite.ends_with(plain.substr(plain.find("whitepoint"))));
}

}  // namespace
}  // namespace corvantile
