#include "corvantile/residual/uniform_colour.hpp"

#include <gtest/gtest.h>

#include "corvantile/colour/color_metrics.hpp"

namespace corvantile {
namespace {

const vec3 white{{95.047, 100, 108.883}};

// The table of X, Y, Z and L, a, b that Ottosson prints to check implementations by.
TEST(Oklab, IsAsPublished) {
  const std::pair<vec3, vec3> rows[] = {{{{0.950, 1.000, 1.089}}, {{1.000, 0.000, 0.000}}},
                                        {{{1.000, 0.000, 0.000}}, {{0.450, 1.236, -0.019}}},
                                        {{{0.000, 1.000, 0.000}}, {{0.922, -0.671, 0.263}}},
                                        {{{0.000, 0.000, 1.000}}, {{0.153, -1.415, -0.449}}}};
  for (const auto& [xyz, want] : rows) {
    const vec3 lab = xyz2oklab(published_oklab(), xyz);
    for (std::size_t k = 0; k < 3; ++k) EXPECT_NEAR(lab[k], want[k], 5.01e-4) << xyz[0] << ' ' << xyz[1];
  }
}

TEST(Oklab, MakesItsWhiteWhiteAndKnowsItsSlopes) {
  const oklab_space space = adapted_oklab({{300, 310, 280}});
  EXPECT_LT(dist2(xyz2oklab(space, {{300, 310, 280}}), {{1, 0, 0}}), 1e-14) << "to the digits of the matrices";
  EXPECT_NEAR(xyz2oklab(space, {{37.5, 38.75, 35}})[0], 0.5, 1e-7) << "an eighth of the light, half the root";
  mat3 slopes;
  const vec3 at{{50, 60, 20}}, lab = xyz2oklab(space, at, slopes);
  EXPECT_EQ(lab, xyz2oklab(space, at));
  for (std::size_t c = 0; c < 3; ++c) {
    vec3 next = at;
    next[c] += 1e-4;
    EXPECT_LT(dist2((xyz2oklab(space, next) - lab) / 1e-4, slopes.col[c]), 1e-12);
  }
}

TEST(ExactLab, HasItsInverseBelowBlackAndBeyondWhite) {
  const struct {
    vec3 xyz;
    const char* why;
  } rows[] = {{{{41.2, 21.3, 1.9}}, "red"},
              {{{0.001, 0.0005, 0.003}}, "on the straight line"},
              {{{216.0 / 24389 * 95.047, 216.0 / 24389 * 100, 216.0 / 24389 * 108.883}}, "at the knee"},
              {{{-0.5, -0.3, -1}}, "below black"},
              {{{120, 130, 140}}, "beyond white"}};
  for (const auto& r : rows) {
    SCOPED_TRACE(r.why);
    const vec3 lab = xyz2lab_exact(r.xyz, white);
    EXPECT_LT(dist2(lab2xyz_exact(lab, white), r.xyz), 1e-24);
    EXPECT_LT(dist2(lab, xyz2lab_vec(r.xyz, white)), 4e-6) << "the rounded constants";
    const mat3 slopes = lab2xyz_slopes(lab, white);
    for (std::size_t c = 0; c < 3; ++c) {
      vec3 below = lab;
      below[c] -= 1e-6;
      EXPECT_LT(dist2((r.xyz - lab2xyz_exact(below, white)) / 1e-6, slopes.col[c]), 1e-8);
    }
  }
}

}  // namespace
}  // namespace corvantile
