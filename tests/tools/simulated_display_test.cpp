#include "tools/simulated_display.hpp"

#include <gtest/gtest.h>
#include <sstream>

namespace corvantile {
namespace {

vec3 reading(const matrix& m, std::size_t row) { return {{m(row, 3), m(row, 4), m(row, 5)}}; }

TEST(SimulatedDisplay, WhiteIsTheSumOfThePrimariesAndWordsSayItAll) {
  for (std::uint64_t seed = 1; seed <= 40; ++seed) {
    simulated_display d = random_display(seed), again;
    std::istringstream words(arguments(d));
    for (std::string w; words >> w;) ASSERT_EQ(set_parameter(again, w), "");
    EXPECT_EQ(measurement_text(again), measurement_text(d));
    d.noise = 0;
    d.digits = 15;
    const matrix m = sample_rows(d);
    const auto n = static_cast<std::size_t>(d.levels);
    const vec3 dark = reading(m, n - 1), white = reading(m, 0);
    EXPECT_EQ(m.rows(), (d.version == 1 ? 7 : 4) * n);
    EXPECT_NEAR(white[1], d.white_luminance, 1e-9);
    EXPECT_NEAR(white[0] / white[1], d.white[0] / d.white[1], 1e-12);
    EXPECT_LT(dist2(reading(m, n) + reading(m, 2 * n) + reading(m, 3 * n), white + 2.0 * dark), 1e-18);
  }
}

TEST(SimulatedDisplay, NeedNotAddUp) {
  const vec3 white{{1, 1, 1}}, red{{1, 0, 0}}, black{};
  const simulated_display plain{.black_luminance = 0};
  const struct {
    simulated_display d;
    double white, red;  // of the light
    const char* why;
  } rows[] = {{{.black_luminance = 0, .power_limit = 0.3}, 0.7, 0.9, "a channel is a third of the load"},
              {{.black_luminance = 0, .crosstalk = {{.2, .2, .2}}}, 0.8, 1, "red alone loses nothing"},
              {{.black_luminance = 0, .dynamic_backlight = 0.3}, 1, 0.8, "red is a third of the picture"}};
  for (const auto& r : rows) {
    EXPECT_NEAR(shown(r.d, white)[1], r.white * shown(plain, white)[1], 1e-9) << r.why;
    EXPECT_NEAR(shown(r.d, red)[1], r.red * shown(plain, red)[1], 1e-9) << r.why;
  }
  EXPECT_NEAR(shown({.black_luminance = 2, .dynamic_backlight = 0.3}, black)[1], 1.4, 1e-12);
  const auto inverse = [&](const vec3& u) { return white - u; };
  EXPECT_NE(readings_table(plain, std::vector<vec3>{white, black}, inverse).find("\n0 0 0 237.614 250.000 "),
            std::string::npos)
      << "the drives asked for, the light of the loaded ones";
}

TEST(SimulatedDisplay, ComplainsByName) {
  simulated_display d;
  for (const char* word : {"colour=1", "levels", "levels=1.5", "gamma=2.2", "white=.3,.3,.3", "dark_red_z=yes"})
    EXPECT_NE(set_parameter(d, word), "") << word;
  for (const char* word :
       {"levels=1", "version=3", "noise=nan", "black_luminance=250", "white=0.1,0.8", "red=0.7,0.4"}) {
    d = {};
    EXPECT_EQ(set_parameter(d, word), "");
    EXPECT_NE(problem(d), "") << word;
  }
}

}  // namespace
}  // namespace corvantile
