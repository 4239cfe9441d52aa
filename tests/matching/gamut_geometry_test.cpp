#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

#include "colour/chromaticity.hpp"
#include "matching/matching.hpp"

namespace corvantile {
namespace {

constexpr chromaticity_table srgb{{{{0.64, 0.33}}, {{0.30, 0.60}}, {{0.15, 0.06}}, {{0.3127, 0.3290}}}};
constexpr triangle srgb_gamut{srgb[0], srgb[1], srgb[2]};

void expect_near(const vec2& got, const vec2& want, double tol) {
  EXPECT_NEAR(got[0], want[0], tol);
  EXPECT_NEAR(got[1], want[1], tol);
}

TEST(Primaries, ChromaticitiesOfTheUnitMatrixAreTheCornersOfThePlane) {
  const mat3 unit{{vec3{{1, 0, 0}}, vec3{{0, 1, 0}}, vec3{{0, 0, 1}}}};
  EXPECT_EQ(rgb2c_type(unit), (chromaticity_table{{{{1, 0}}, {{0, 1}}, {{0, 0}}, {{1.0 / 3, 1.0 / 3}}}}));
}

TEST(Primaries, SrgbMatrixIsThePublishedOne) {
  const mat3 published{{vec3{{0.41239079926595934, 0.21263900587151027, 0.01933081871559182}},  // CSS Color 4
                        vec3{{0.357584339383878, 0.715168678767756, 0.11919477979462598}},
                        vec3{{0.1804807884018343, 0.07219231536073371, 0.9505321522496607}}}};
  const mat3 m = c2rgb_type(srgb);
  matrix table(4, 2);
  for (std::size_t i = 0; i < 4; ++i) {
    table(i, 0) = srgb[i][0];
    table(i, 1) = srgb[i][1];
    expect_near(rgb2c_type(m)[i], srgb[i], 2e-16);
  }
  const matrix batch = c2rgb_mat(table);
  const matrix back = rgb2c_mat(batch);
  const matrix rows = chromaticities(batch);  // any three rows will do: here X, Y, Z of the channels
  for (std::size_t c = 0; c < 3; ++c) {
    for (std::size_t i = 0; i < 3; ++i) {
      EXPECT_NEAR(m(i, c), published(i, c), 1e-12);
      EXPECT_EQ(batch(i, c), m(i, c));
    }
    EXPECT_EQ((vec2{{back(c, 0), back(c, 1)}}), rgb2c_type(m)[c]);
    EXPECT_EQ((vec2{{rows(c, 0), rows(c, 1)}}), xyz2xy(row3(batch, c)));
  }
  EXPECT_NEAR(m(1, 0) + m(1, 1) + m(1, 2), 1.0, 2e-16) << "white Y";
}

TEST(Segments, MeetWhereTheirLinesCross) {
  const segment base{{{0, 0}}, {{4, 0}}};
  const struct {
    segment other;
    std::optional<vec2> ts;
    bool cross;
    const char* why;
  } rows[] = {{{{{1, -1}}, {{1, 3}}}, vec2{{0.25, 0.25}}, true, "interior"},
              {{{{4, 0}}, {{4, 1}}}, vec2{{1, 0}}, true, "touching ends count"},
              {{{{5, -1}}, {{5, 1}}}, vec2{{1.25, 0.5}}, false, "beyond the first"},
              {{{{2, 1}}, {{2, 2}}}, vec2{{0.5, -1}}, false, "before the second"},
              {{{{1, 0}}, {{2, 0}}}, std::nullopt, false, "overlapping, yet parallel"},
              {{{{1, 1}}, {{1, 1}}}, std::nullopt, false, "a point has no direction"},
              {{{{1, -1e-15}}, {{1, 4e-15}}}, std::nullopt, false, "the bound of 2.2e-14 is absolute"}};
  for (const auto& r : rows) {
    SCOPED_TRACE(r.why);
    const auto meet = intersection_parameters(base, r.other);
    ASSERT_EQ(meet.has_value(), r.ts.has_value());
    EXPECT_EQ(segs_intersect(base, r.other), r.cross);
    EXPECT_EQ(segs_intersect(r.other, base), r.cross);
    if (!meet) continue;
    EXPECT_EQ((vec2{{meet->t, meet->s}}), *r.ts);
    EXPECT_EQ(meet->point, base.start + meet->t * (base.end - base.start));
  }
}

TEST(InteriorTriangle, KeepsTheIncentreAndLosesTheMargin) {
  const triangle right{{{{0, 0}}, {{4, 0}}, {{0, 3}}}};  // incentre (1, 1), inradius 1
  EXPECT_EQ(inradius(right), 1.0);
  for (const triangle& t : {right, triangle{right[0], right[2], right[1]}}) {  // both senses of rotation
    EXPECT_EQ(interior_triangle(t, 0).inner, t);
    const auto [inner, ok] = interior_triangle(t, 0.25);
    EXPECT_TRUE(ok);
    for (std::size_t i = 0; i < 3; ++i) expect_near(inner[i], t[i] + 0.25 * (vec2{{1, 1}} - t[i]), 2e-15);
    EXPECT_NEAR(inradius(inner), 0.75, 2e-15);
  }
  EXPECT_FALSE(interior_triangle(right, 1).ok) << "shrunk to a point";
  EXPECT_FALSE(interior_triangle(right, 2).ok);
  EXPECT_TRUE(std::isfinite(interior_triangle(right, 2).inner[0][0])) << "computed all the same";
  EXPECT_FALSE(interior_triangle({{{{0, 0}}, {{1, 1}}, {{2, 2}}}}, 0).ok) << "no inside at all";
}

TEST(AdjustPrimaries, ReachablePrimariesStay) {
  const mat3 target = c2rgb_type(srgb);
  const triangle wide{{{{0.70, 0.29}}, {{0.17, 0.80}}, {{0.13, 0.04}}}};
  const auto kept = adjust_primaries(target, wide);
  EXPECT_EQ(kept.distances, vec3{});
  EXPECT_EQ(kept.rgb, c2rgb_type(rgb2c_type(target)));
}

TEST(AdjustPrimaries, UnreachableOnesMoveTowardsWhiteOntoTheBoundary) {
  const chromaticity_table wide{{{{0.70, 0.29}}, {{0.31, 0.59}}, {{0.13, 0.04}}, srgb[3]}};
  const vec2 white = srgb[3];
  for (const double margin : {0.0, 0.005}) {
    SCOPED_TRACE(margin);
    const auto got = adjust_primaries(c2rgb_type(wide), srgb_gamut, margin);
    const chromaticity_table c = rgb2c_type(got.rgb);
    EXPECT_TRUE(got.margin_ok);
    expect_near(c[3], white, 2e-16);
    for (std::size_t i = 0; i < 3; ++i) {
      EXPECT_NEAR(got.distances[i], uvdist(wide[i], c[i]), 1e-15);
      if (i == 1 && margin == 0) {
        EXPECT_EQ(got.distances[i], 0.0) << "this green is inside until the gamut shrinks";
        continue;
      }
      EXPECT_GT(got.distances[i], 0.0);
      const vec2 was = wide[i] - white;
      const vec2 now = c[i] - white;
      EXPECT_NEAR(was[0] * now[1] - was[1] * now[0], 0.0, 1e-15) << "on the line to the white";
      double nearest = 1;  // distance in uv to the lines of the gamut: the margin
      for (std::size_t e = 0; e < 3; ++e) {
        const vec2 a = xy2uv_vec(srgb_gamut[e]);
        const vec2 along = xy2uv_vec(srgb_gamut[(e + 1) % 3]) - a;
        const vec2 to = xy2uv_vec(c[i]) - a;
        nearest = std::min(nearest, std::abs(along[0] * to[1] - along[1] * to[0]) / std::hypot(along[0], along[1]));
      }
      EXPECT_NEAR(nearest, margin, 1e-15);
    }
  }
  EXPECT_FALSE(adjust_primaries(c2rgb_type(wide), srgb_gamut, 0.2).margin_ok) << "more than the gamut has";
}

}  // namespace
}  // namespace corvantile
