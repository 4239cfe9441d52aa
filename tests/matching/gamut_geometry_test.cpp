#include <cmath>
#include <gtest/gtest.h>

#include "corvantile/colour/chromaticity.hpp"
#include "corvantile/matching/matching.hpp"

namespace corvantile {
namespace {

constexpr chromaticity_table srgb{{{0.64, 0.33}}, {{0.30, 0.60}}, {{0.15, 0.06}}, {{0.3127, 0.3290}}};

std::array<vec2, 4> each(const chromaticity_table& c) { return {c.red, c.green, c.blue, c.white}; }

double distance(const vec2& a, const vec2& b) { return std::hypot(a[0] - b[0], a[1] - b[1]); }

TEST(Primaries, SrgbMatrixIsThePublishedOne) {
  const mat3 published{{vec3{{0.41239079926595934, 0.21263900587151027, 0.01933081871559182}},  // CSS Color 4
                        vec3{{0.357584339383878, 0.715168678767756, 0.11919477979462598}},
                        vec3{{0.1804807884018343, 0.07219231536073371, 0.9505321522496607}}}};
  const mat3 m = c2rgb_type(srgb);
  for (std::size_t c = 0; c < 3; ++c) EXPECT_LT(dist2(m.col[c], published.col[c]), 1e-24);
  for (std::size_t i = 0; i < 4; ++i) EXPECT_LT(distance(each(rgb2c_type(m))[i], each(srgb)[i]), 3e-16);
  const matrix back = rgb2c_mat(to_matrix(m)), again = c2rgb_mat(back);
  EXPECT_EQ((vec2{{back(2, 0), back(2, 1)}}), rgb2c_type(m).blue);
  for (std::size_t i = 0; i < 3; ++i) EXPECT_LT(dist2(row3(again, i), row3(to_matrix(m), i)), 1e-30);
}

TEST(Segments, MeetWhereTheirLinesCross) {
  const segment base{{{0, 0}}, {{4, 0}}};
  EXPECT_TRUE(segs_intersect(base, {{{0, -1}}, {{0, 0}}})) << "touching ends count";
  EXPECT_TRUE(segs_intersect({{{0, -1}}, {{0, 0}}}, base));
  EXPECT_FALSE(segs_intersect(base, {{{2, -2}}, {{2, -1}}})) << "beyond the second";
  EXPECT_FALSE(segs_intersect(base, {{{1, 0}}, {{2, 0}}})) << "overlapping but parallel";
  EXPECT_FALSE(segs_intersect(base, {{{1, -1e-15}}, {{1, 4e-15}}})) << "the bound of 2.2e-14 is absolute";
}

TEST(InteriorTriangle, KeepsTheIncentreAndLosesTheMargin) {
  const triangle right{{{{0, 0}}, {{4, 0}}, {{0, 3}}}};                        // incentre (1, 1), inradius 1
  for (const triangle& t : {right, triangle{right[0], right[2], right[1]}}) {  // both senses of rotation
    EXPECT_EQ(interior_triangle(t, 0).inner, t);
    const auto [inner, ok] = interior_triangle(t, 0.25);
    EXPECT_TRUE(ok);
    for (std::size_t i = 0; i < 3; ++i) EXPECT_LT(distance(inner[i], t[i] + 0.25 * (vec2{{1, 1}} - t[i])), 3e-15);
  }
  EXPECT_FALSE(interior_triangle(right, 1).ok) << "shrunk to a point";
}

TEST(AdjustPrimaries, UnreachableOnesMoveTowardsWhiteOntoTheBoundary) {
  // Red and blue lie outside the gamut of sRGB; green lies inside until the gamut shrinks.
  const chromaticity_table wide{{{0.70, 0.29}}, {{0.31, 0.59}}, {{0.13, 0.04}}, srgb.white};
  const triangle gamut{srgb.red, srgb.green, srgb.blue};
  EXPECT_FALSE(adjust_primaries(c2rgb_type(wide), gamut, 0.2).margin_ok) << "more than the gamut can lose";
  for (const double margin : {0.0, 0.005}) {
    const auto got = adjust_primaries(c2rgb_type(wide), gamut, margin);
    const std::array c = each(rgb2c_type(got.rgb)), from = each(wide);
    EXPECT_LT(distance(c[3], srgb.white), 3e-16) << "the white stays";
    for (std::size_t i = 0; i < 3; ++i) {
      EXPECT_NEAR(got.distances[i], uvdist(from[i], c[i]), 1e-15);
      EXPECT_NEAR(distance(from[i], c[i]) + distance(c[i], srgb.white), distance(from[i], srgb.white), 1e-15);
      double nearest = 1;  // distance in uv to the lines of the gamut
      for (std::size_t e = 0; e < 3; ++e) {
        const vec2 a = xy2uv_vec(gamut[e]), along = xy2uv_vec(gamut[(e + 1) % 3]) - a, to = xy2uv_vec(c[i]) - a;
        nearest = std::min(nearest, std::abs(along[0] * to[1] - along[1] * to[0]) / distance(along, {}));
      }
      EXPECT_NEAR(i == 1 && margin == 0 ? got.distances[i] : nearest, margin, 1e-15) << i;
    }
  }
}

}  // namespace
}  // namespace corvantile
