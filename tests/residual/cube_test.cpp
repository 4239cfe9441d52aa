#include "corvantile/residual/cube.hpp"

#include <cstring>
#include <gtest/gtest.h>

#include "corvantile/colour/color_metrics.hpp"
#include "corvantile/colour/nonpar_monitor.hpp"
#include "corvantile/colour/standards.hpp"
#include "tests/residual/displays.hpp"

namespace corvantile {
namespace {

vec3 as_it_is(const vec3& signal) { return signal; }

cube_target srgb_on(const residual_model& model) {
  const double luminance = 0.9 * ramptop_xyz(model.base, srgb.white).xyz[1];
  return make_cube_target(srgb, luminance, make_gamma_table(2.2, 4096), model.base.darklight);
}

// The closed loop: what the simulated display itself shows through the cube, beside what it was to show.
TEST(Cube, MakesADisplayThatDoesNotAddUpShowItsTarget) {
  const simulated_display d = crosstalk_display(0.1);
  const residual_model model = learnt(d);
  const prepared_residual_model display(model);
  const cube_target target = srgb_on(model);
  const drive_cube cube = make_cube(display, target, as_it_is, 17);
  const vec3 white = white_of(target);
  const auto difference = [&](const vec3& signal, const vec3& drive) {
    return deltae2000_vec(xyz2lab_vec(colour_of(target, signal), white), xyz2lab_vec(shown(d, drive), white));
  };
  std::vector<double> before, after, gray;
  const std::vector<vec3> signals = scattered(300);
  for (std::size_t i = 0; i < signals.size(); ++i) {
    const found_drive exact = drive_for(display, adapted_oklab(white), colour_of(target, signals[i]), signals[i]);
    if (!exact.reached()) continue;
    before.push_back(difference(signals[i], signals[i]));
    after.push_back(difference(signals[i], through(cube, signals[i])));
    const vec3 level = static_cast<double>(i) / 299 * vec3{{1, 1, 1}};
    gray.push_back(difference(level, through(cube, level)));
  }
  EXPECT_GT(after.size(), 150u);
  EXPECT_LT(summarize(after).mean, 0.3);
  EXPECT_LT(summarize(gray).mean, 0.3);
  EXPECT_LT(summarize(after).mean, summarize(before).mean / 5);
}

TEST(Cube, HasTheSameBytesWithAnyNumberOfThreadsAndCountsThem) {
  const residual_model model = learnt(crosstalk_display(0.2));
  const prepared_residual_model display(model);
  const cube_target target = srgb_on(model);
  const drive_cube one = make_cube(display, target, as_it_is, 7, 1);
  for (const unsigned threads : {2U, 5U}) {
    std::size_t last = 0;
    const drive_cube many = make_cube(display, target, as_it_is, 7, threads, [&](std::size_t done, std::size_t of) {
      EXPECT_EQ(of, 343u);
      EXPECT_GE(done, last);
      last = done;
    });
    EXPECT_EQ(last, 343u);
    EXPECT_EQ(std::memcmp(one.drive.data(), many.drive.data(), 343 * sizeof(vec3)), 0);
    EXPECT_EQ(one.miss, many.miss);
  }
  struct enough {};
  EXPECT_THROW(make_cube(display, target, as_it_is, 7, 2, [](std::size_t, std::size_t) { throw enough{}; }), enough);
}

// As if noise had taught it so: dark grays turn red so quickly that less red makes the next brighter gray.
TEST(Cube, LetsNoGrayFallWhereTheModelFalls) {
  residual_model model = additive_only(fitted(uneven_display()));
  model.residual = {{{{0.3, 0.3, 0.3}}}, {{{0, 150, 0}}}};
  const prepared_residual_model display(model);
  const cube_target target = srgb_on(model);
  const drive_cube cube = make_cube(display, target, as_it_is, 33);
  const std::size_t step = 1 + 33 + 33 * 33;
  std::size_t fell = 0;
  vec3 before;
  for (std::size_t i = 1; i < 33; ++i) {
    const vec3 signal = static_cast<double>(i) / 32 * vec3{{1, 1, 1}};
    const vec3 alone = drive_for(display, adapted_oklab(white_of(target)), colour_of(target, signal), signal).drive;
    for (std::size_t c = 0; c < 3; ++c) {
      EXPECT_GE(cube.drive[i * step][c], cube.drive[(i - 1) * step][c]) << i;
      if (alone[c] < before[c]) ++fell;
    }
    before = alone;
  }
  EXPECT_GT(fell, 0u) << "or this has tried nothing";
}

TEST(Cube, TargetAndInterpolationAreAsDefined) {
  const lut half{{0, 1}, {0, 0.5}};
  const cube_target even = make_cube_target(srgb, 80, half, {{1, 2, 3}});
  EXPECT_LT(dist2(white_of(even), 40.0 * xy2xyz(d65) + vec3{{1, 2, 3}}), 1e-20);
  EXPECT_EQ(colour_of(even, {}), (vec3{{1, 2, 3}}));
  const cube_target fading = make_cube_target(srgb, 80, half, {{1, 2, 3}}, 0.5);
  EXPECT_EQ(colour_of(fading, {}), (vec3{{1, 2, 3}}));
  EXPECT_EQ(colour_of(fading, {{0, 0.5, 0}}), 0.25 * fading.primaries.col[1]);

  drive_cube cube{2, {}, {}};
  for (const vec3& bgr : even_places(2)) cube.drive.push_back({{bgr[2], bgr[1], bgr[0]}});
  cube.drive[3] = {{1, 1, 8}};  // yellow, which red and green meet at
  EXPECT_LT(dist2(through(cube, {{0.2, 0.7, 0.4}}), {{0.2, 0.7, 0.4}}), 1e-24) << "not a corner of this tetrahedron";
  EXPECT_LT(dist2(through(cube, {{0.5, 0.5, 0.25}}), {{0.5, 0.5, 0.25 + 0.25 * 8}}), 1e-24);
  EXPECT_EQ(through(cube, {{9, 1, -1}}), cube.drive[3]);
}

}  // namespace
}  // namespace corvantile
