#include "corvantile/residual/gaussian_process.hpp"

#include <cmath>
#include <gtest/gtest.h>

#include "corvantile/residual/spline_grid.hpp"
#include "tests/residual/displays.hpp"

namespace corvantile {
namespace {

vec3 wave(const vec3& u) { return {{std::sin(4 * u[0]) * u[1], std::cos(3 * u[2] + u[0]), u[0] * u[1] * u[2]}}; }

std::vector<vec3> values(std::span<const vec3> places) {
  std::vector<vec3> v;
  for (const vec3& u : places) v.push_back(wave(u));
  return v;
}

// By its own definition: learn from all others and look at the one left out.
TEST(GaussianProcess, LeavesOneOutAsIfItHadNotBeenThere) {
  const std::vector<vec3> places = scattered(60), all = values(places);
  for (const gaussian_process_limits& limits :
       {gaussian_process_limits{}, {.exact = 0}, {.exact = 0, .left_out = 20}}) {
    const learnt_process p = learn(places, all, 7, 1, limits);
    EXPECT_EQ(p.left_out.size(), limits.left_out == 20 ? 20u : 60u);
    for (const auto& [i, error] : p.left_out) {
      if (i % 9 != 0) continue;
      std::vector<vec3> others = places;
      others.erase(others.begin() + static_cast<std::ptrdiff_t>(i));
      const gaussian_process without = learn(others, values(others), 7, 1).f;
      EXPECT_LT(dist2(error, all[i] - value_at(without, places[i])), limits.exact > 0 ? 1e-20 : 1e-4) << i;
    }
  }
}

TEST(GaussianProcess, NeedsFewCentresForManySamples) {
  const std::vector<vec3> places = scattered(1200), all = values(places);
  const gaussian_process exact = learn(places, all, 0, 2).f;
  const learnt_process few = learn(places, all, 100, 2, {.exact = 0, .centres = 200});
  ASSERT_EQ(few.f.centre.size(), 200u);
  for (const vec3& u : scattered(50)) EXPECT_LT(std::sqrt(dist2(value_at(exact, u), value_at(few.f, u))), 0.015);
  EXPECT_EQ(learn(places, all, 100, 2, {.exact = 0, .centres = 200, .centres_at_work = 300}).f.centre.size(), 100u)
      << "four times the samples, half the centres";
}

TEST(GaussianProcess, DoesNotDependOnThreads) {
  const std::vector<vec3> places = scattered(400), all = values(places);
  for (const std::size_t exact : {0U, 400U}) {
    const gaussian_process_limits limits{.exact = exact, .centres = 200};
    const learnt_process one = learn(places, all, 10, 1, limits), many = learn(places, all, 10, 5, limits);
    EXPECT_EQ(one.f.centre, many.f.centre);
    EXPECT_EQ(one.f.weight, many.f.weight);
    ASSERT_EQ(one.left_out.size(), many.left_out.size());
    for (std::size_t i = 0; i < one.left_out.size(); ++i) EXPECT_EQ(one.left_out[i].error, many.left_out[i].error);
  }
}

TEST(SplineGrid, MeetsItsSamplesAndKnowsItsSlopes) {
  constexpr std::size_t n = spline_grid::points;
  const auto line = [](const vec3& u) { return vec3{{u[0] - 2 * u[1], 3 * u[2], 1 + u[0] + u[1] + u[2]}}; };
  std::vector<vec3> waves, lines;
  for (std::size_t i = 0; i < n * n * n; ++i) {
    const vec3 u{
        {spline_grid::coordinate(i / n / n), spline_grid::coordinate(i / n % n), spline_grid::coordinate(i % n)}};
    waves.push_back(wave(u));
    lines.push_back(line(u));
  }
  const spline_grid curved(waves), straight(lines);
  for (const vec3& u : {vec3{{0, 0.5, 1}}, vec3{{0.25, 0.75, 0.125}}, vec3{{1, 1, 1}}}) {
    EXPECT_LT(dist2(curved(u).value, wave(u)), 1e-24) << "at grid points";
  }
  for (const vec3& u : scattered(50)) {
    EXPECT_LT(dist2(straight(u).value, line(u)), 1e-24) << "a straight line is a spline";
    EXPECT_LT(std::sqrt(dist2(curved(u).value, wave(u))), 3e-5);
    for (std::size_t c = 0; c < 3; ++c) {
      vec3 next = u;
      next[c] -= 1e-6;
      EXPECT_LT(dist2((curved(u).value - curved(next).value) / 1e-6, curved(u).slopes.col[c]), 1e-9);
    }
  }
}

}  // namespace
}  // namespace corvantile
