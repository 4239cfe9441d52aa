#include "corvantile/job/refinement.hpp"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <sstream>

#include "corvantile/colour/chromaticity.hpp"
#include "corvantile/colour/color_metrics.hpp"
#include "corvantile/utils/failure.hpp"
#include "tools/simulated_display.hpp"

namespace corvantile {
namespace {

constexpr vec2 d65{{0.3127, 0.3290}};

measurements measured(const simulated_display& d) { return {"simulated", sample_rows(d), d.levels, d.version}; }

// What the display `d` gets for a gray, with the tables of a CV1 job loaded.
vec3 loaded(const correction& c, double s) {
  const double at = s * static_cast<double>(c.gray.rows() - 1);
  const auto i = std::min(static_cast<std::size_t>(at), c.gray.rows() - 2);
  const double t = at - static_cast<double>(i);
  return (1 - t) * row3(c.gray, i) + t * row3(c.gray, i + 1);
}

// The grays as the display shows them, with the instrument's noise.
measured_grays read(const simulated_display& d, const correction& c, int levels = 33) {
  measured_grays grays{"after", {}};
  std::vector<vec3> drives;
  for (int i = 0; i < levels; ++i) drives.push_back(i / (levels - 1.0) * vec3{{1, 1, 1}});
  const std::string text = readings_table(d, drives, [&](const vec3& u) { return loaded(c, u[0]); });
  std::istringstream lines(text.substr(text.find('\n')));
  for (double r = 0, g = 0, b = 0, x = 0, y = 0, z = 0; lines >> r >> g >> b >> x >> y >> z;)
    grays.levels.push_back({.drive = r, .xyz = {{x, y, z}}});
  return grays;
}

// Mean CIEDE2000 of the true grays from D65 and gamma 2.2 below the shown white. The display has no dark.
double missed(const simulated_display& d, const correction& c) {
  const vec3 white = shown(d, loaded(c, 1))[1] * xy2xyz(d65);
  double sum = 0;
  for (int i = 1; i <= 50; ++i) {
    const vec3 wanted = std::pow(i / 50.0, 2.2) * white;
    sum += deltae2000_vec(xyz2lab_vec(wanted, white), xyz2lab_vec(shown(d, loaded(c, i / 50.0)), white));
  }
  return sum / 50;
}

TEST(Refinement, BringsGraysOfDisplaysThatDoNotAddUpToTheirTarget) {
  const struct {
    simulated_display display;
    double before;  // at least; a display that adds up must stay within its noise
    const char* why;
  } rows[] = {{{}, 0, "adds up"},
              {{.crosstalk = {{0.2, 0.2, 0.2}}}, 2, "each channel loses to the next"},
              {{.crosstalk = {{0, 0, 0.2}}}, 3, "grays of another colour at each level"},
              {{.power_limit = 0.2}, 1, "the white that was promised is out of reach"},
              {{.dynamic_backlight = 0.2}, 0.5, "the dark moves, too"},
              {{.crosstalk = {{0.1, 0.1, 0.1}}, .power_limit = 0.1, .dynamic_backlight = 0.1}, 1, "all at once"}};
  for (const auto& r : rows) {
    SCOPED_TRACE(r.why);
    simulated_display d = r.display;
    d.levels = 33;
    d.black_luminance = 0;
    d.white = {{0.285, 0.30}};
    d.gamma = {{2.3, 2.2, 2.1}};
    d.noise = 0.003;
    const settings set{.mode = match_mode::cv1, .tlen = 512, .white = d65, .restart = true};
    const measurements samples = measured(d);
    const correction first = solve(set, samples);
    d.seed = 2;
    const correction second = solve(set, samples, {}, refine_grays(first, set, read(d, first)).factors);
    EXPECT_GT(missed(d, first), r.before);
    EXPECT_LT(missed(d, second), 0.5);
  }
}

TEST(Refinement, AConstantFactorChangesNothing) {
  const settings set{.mode = match_mode::cv1, .tlen = 17, .white = d65};
  const measurements samples = measured({});
  const std::vector<double> ends{0, 2};
  const std::vector<vec3> tenth(2, vec3{{0.9, 0.9, 0.9}});
  EXPECT_EQ(solve(set, samples).gray, solve(set, samples, {}, make_gray_factors("f", ends, tenth)).gray)
      << "only colour and the ratio to white count";
}

TEST(Refinement, RefusesWhatItCannotCorrect) {
  const settings good{.mode = match_mode::cv1, .tlen = 17};
  const correction first = solve(good, measured({}));
  const measured_grays grays = read({}, first, 9);
  const auto kind_of = [&](const settings& set, const measured_grays& g) {
    try {
      refine_grays(first, set, g);
    } catch (const failure& f) {
      return static_cast<int>(f.kind);
    }
    return -1;
  };
  EXPECT_EQ(kind_of(good, grays), -1);
  settings shaded = good, tables = good;
  shaded.temp = shaded.wptemp = 6000;
  tables.mode = match_mode::cv2;
  for (const settings& set : {shaded, tables}) EXPECT_EQ(kind_of(set, grays), static_cast<int>(fault::inexpressible));
  measured_grays dark = grays;
  dark.levels[1].xyz[2] = 0;
  EXPECT_EQ(kind_of(good, dark), -1) << "as an instrument reads near black";
  measured_grays few = grays, no_white = grays, dead = grays;
  few.levels.erase(few.levels.begin(), few.levels.begin() + 5);
  no_white.levels.pop_back();
  dead.levels.back().xyz = {};
  for (const measured_grays& g : {few, no_white, dead}) EXPECT_EQ(kind_of(good, g), static_cast<int>(fault::content));
  EXPECT_THROW(solve(shaded, measured({}), {}, refine_grays(first, good, grays).factors), failure);
}

}  // namespace
}  // namespace corvantile
