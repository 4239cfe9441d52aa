#include "tools/simulated_display.hpp"

#include <cmath>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace corvantile {
namespace {

vec3 reading(const matrix& m, std::size_t row) { return {{m(row, 3), m(row, 4), m(row, 5)}}; }

vec2 chromaticity(const vec3& xyz) {
  const double sum = xyz[0] + xyz[1] + xyz[2];
  return {{xyz[0] / sum, xyz[1] / sum}};
}

void expect_near(const vec3& got, const vec3& want, double relative) {
  for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(got[i], want[i], relative * want[i]) << "component " << i;
}

TEST(SimulatedDisplay, FileHasCommentsHeaderAndItsReadingsDigitForDigit) {
  const struct {
    const char* words;
    const char* header;
    std::size_t rows;
  } cases[] = {{"levels=16", "16 0 2", 64},
               {"levels=2 version=1", "2 0 1", 14},
               {"levels=256 extra=5 noise=0.01", "256 5 2", 1029},
               {"levels=300 drive=100 extra=3 version=1 digits=9", "300 3 1", 2103},
               {"levels=9 drive=1 digits=3 white_luminance=5000", "9 0 2", 36}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.words);
    simulated_display d;
    std::istringstream words(c.words);
    for (std::string w; words >> w;) ASSERT_EQ(set_parameter(d, w), "");
    ASSERT_EQ(problem(d), "");
    const std::string text = measurement_file(d);
    EXPECT_EQ(text, measurement_file(d)) << "the same parameters give the same file";
    EXPECT_NE(text.find("; A SIMULATED display"), std::string::npos);
    EXPECT_NE(text.find("simulate_display " + arguments(d)), std::string::npos) << "names the command that made it";

    std::istringstream in(text);
    std::string line;
    while (std::getline(in, line) && line.starts_with(";")) {
    }
    EXPECT_EQ(line, c.header);
    const matrix m = readings(d);
    ASSERT_EQ(m.rows(), c.rows);
    for (std::size_t i = 0; i < m.rows(); ++i) {
      for (std::size_t j = 0; j < 6; ++j) {
        double v = -1;
        in >> v;
        ASSERT_EQ(v, m(i, j)) << "row " << i << " column " << j;
      }
    }
    in >> std::ws;
    EXPECT_TRUE(in.eof()) << "nothing after the last sample";
    EXPECT_EQ(m(0, 0), d.drive) << "the first sample is full drive";
  }
}

TEST(SimulatedDisplay, RampsFallAndWhiteIsTheSumOfThePrimaries) {
  int bright = 0;
  for (std::uint64_t seed = 1; seed <= 300; ++seed) {
    simulated_display d = random_display(seed);
    SCOPED_TRACE(arguments(d));
    ASSERT_EQ(problem(d), "");
    EXPECT_TRUE(d.white_luminance >= 60 && d.white_luminance <= 1000);
    bright += d.white_luminance > 240 ? 1 : 0;

    const std::size_t n = static_cast<std::size_t>(d.levels);
    const matrix noisy = readings(d);
    for (std::size_t i = 0; i < (d.version == 1 ? 7 : 4) * n; ++i) {
      if (i % n == 0) continue;
      EXPECT_LT(noisy(i, 4), noisy(i - 1, 4)) << "Y falls along a ramp, noise or not; row " << i;
    }

    d.noise = 0;
    d.digits = 15;
    const matrix m = readings(d);
    const vec3 dark = reading(m, n - 1), white = reading(m, 0);
    EXPECT_NEAR(white[1], d.white_luminance, 1e-9);
    EXPECT_NEAR(dark[1], d.black_luminance, 1e-12);
    expect_near((reading(m, n) - dark) + (reading(m, 2 * n) - dark) + (reading(m, 3 * n) - dark), white - dark,
                1e-12);
    const vec2 want[] = {d.white, d.red, d.green, d.blue};
    for (std::size_t r = 0; r < 4; ++r) {
      const vec2 got = chromaticity(reading(m, r * n) - dark);
      EXPECT_NEAR(got[0], want[r][0], 1e-12) << "ramp " << r;
      EXPECT_NEAR(got[1], want[r][1], 1e-12) << "ramp " << r;
    }
  }
  EXPECT_GT(bright, 100) << "displays above 240 cd/m2 are well represented";
}

TEST(SimulatedDisplay, ToneCurvesHaveTheShapeAskedFor) {
  simulated_display d;
  d.gamma = {{1.8, 2.2, 2.6}};
  EXPECT_DOUBLE_EQ(tone(d, 0, 0.5), std::pow(0.5, 1.8));
  EXPECT_DOUBLE_EQ(tone(d, 2, 0.25), std::pow(0.25, 2.6));
  simulated_display toe = d, bent = d;
  toe.toe = 0.05;
  bent.s_shape = 0.5;
  for (std::size_t c = 0; c < 3; ++c) {
    EXPECT_GT(tone(toe, c, 0.02), 3 * tone(d, c, 0.02)) << "a toe lifts the darkest levels";
    EXPECT_GT(tone(bent, c, 0.95), tone(d, c, 0.95)) << "an S shape bends over near full drive";
    for (const simulated_display& s : {d, toe, bent}) {
      EXPECT_EQ(tone(s, c, 0), 0);
      EXPECT_NEAR(tone(s, c, 1), 1, 1e-15);
    }
  }
}

// X/Xmax = (1 - a) m + a m^2, so a is the least-squares slope of X/Xmax - m over m^2 - m.
TEST(SimulatedDisplay, QuadraticShapesAreRecoveredFromTheReadings) {
  simulated_display d;
  d.levels = 33;
  d.digits = 12;
  d.toe = 0.02;
  d.nX = {{0.3, -0.1, 0.05}};
  d.nZ = {{-0.2, 0.15, 0}};
  const matrix m = readings(d);
  const std::size_t n = 33;
  const vec3 dark = reading(m, n - 1);
  for (std::size_t c = 0; c < 3; ++c) {
    const vec3 full = reading(m, (c + 1) * n) - dark;
    for (const std::size_t component : {0u, 2u}) {
      double up = 0, down = 0;
      for (std::size_t i = 0; i < n; ++i) {
        const vec3 light = reading(m, (c + 1) * n + i) - dark;
        const double y = light[1] / full[1], bend = y * y - y;
        up += bend * (light[component] / full[component] - y);
        down += bend * bend;
      }
      EXPECT_NEAR(up / down, (component == 0 ? d.nX : d.nZ)[c], 1e-8) << "channel " << c << " of " << component;
    }
  }
}

TEST(SimulatedDisplay, NoiseHasTheDeviationAskedForAndSparesTheDark) {
  simulated_display d;
  d.levels = 256;
  d.noise = 0.01;
  d.digits = 12;
  simulated_display quiet = d;
  quiet.noise = 0;
  const matrix noisy = readings(d), clean = readings(quiet);
  double sum = 0, squares = 0;
  const int count = 4 * 255 * 3;
  for (std::size_t i = 0; i < noisy.rows(); ++i) {
    for (std::size_t j = 3; j < 6; ++j) {
      if (i % 256 == 255) {
        EXPECT_EQ(noisy(i, j), clean(i, j));
        continue;
      }
      const double r = (noisy(i, j) - clean(i, j)) / (clean(i, j) - clean(255, j));
      sum += r;
      squares += r * r;
    }
  }
  EXPECT_NEAR(sum / count, 0, 4 * 0.01 / std::sqrt(count));
  EXPECT_NEAR(std::sqrt(squares / count), 0.01, 0.0006);
  d.seed = 2;
  EXPECT_NE(readings(d), noisy);
  d.seed = 1;
  d.extra = 7;
  const matrix longer = readings(d);
  for (std::size_t i = 0; i < noisy.rows(); ++i)
    ASSERT_EQ(longer(i, 3), noisy(i, 3)) << "extra samples change no ramp";
}

TEST(SimulatedDisplay, RedWithoutZReadsExactlyTheDarkZ) {
  simulated_display d;
  d.red = {{0.69, 0.31}};
  d.dark_red_z = true;
  d.noise = 0.002;
  const matrix m = readings(d);
  for (std::size_t i = 17; i < 34; ++i) EXPECT_EQ(m(i, 5), m(16, 5)) << "row " << i;
  EXPECT_GT(m(17, 3), 1) << "its X and Y are there";
}

TEST(SimulatedDisplay, WordsSetParametersAndComplainByName) {
  for (std::uint64_t seed = 1; seed <= 20; ++seed) {
    const simulated_display d = random_display(seed);
    simulated_display again;
    std::istringstream words(arguments(d));
    for (std::string w; words >> w;) ASSERT_EQ(set_parameter(again, w), "");
    EXPECT_EQ(measurement_file(again), measurement_file(d));
  }
  const struct {
    const char* word;
    const char* complaint;
  } cases[] = {{"colour=1", "no such parameter: colour"},
               {"levels", "expected levels=value"},
               {"levels=", "bad value in levels="},
               {"levels=1.5", "bad value in levels=1.5"},
               {"gamma=2.2", "bad value in gamma=2.2"},
               {"white=.3,.3,.3", "bad value in white=.3,.3,.3"},
               {"dark_red_z=yes", "bad value in dark_red_z"},
               {"levels=1", "levels must be"},
               {"version=3", "version must be"},
               {"noise=nan", "noise must be"},
               {"black_luminance=250", "black_luminance"},
               {"white=0.1,0.8", "white must lie inside"},
               {"red=0.3,0.6", "white must lie inside"},
               {"gamma=2.2,0,2.2", "gamma must be"}};
  for (const auto& c : cases) {
    simulated_display d;
    std::string got = set_parameter(d, c.word);
    if (got.empty()) got = problem(d);
    EXPECT_TRUE(got.starts_with(c.complaint)) << c.word << " gave: " << got;
  }
}

}  // namespace
}  // namespace corvantile
