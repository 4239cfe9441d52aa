#include "utils/lut.hpp"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace corvantile {
namespace {

using values = std::vector<double>;

constexpr double inf = std::numeric_limits<double>::infinity();

TEST(Lut, IsBuiltOrSaysWhyNot) {
  const struct {
    values x, y;
    int stat;
    lut want;
    const char* why;
  } rows[] = {
      {{1, 2, 4}, {5, 3, 9}, 0, {{1, 2, 4}, {5, 3, 9}}, "rising"},
      {{3, 2, 1}, {30, 20, 10}, 0, {{1, 2, 3}, {10, 20, 30}}, "falling: turned round"},
      {{0, 1, 2}, {0, 1, 2, 3}, 1, {}, "lengths differ"},
      {{0}, {0, 1}, 1, {}, "lengths are looked at first"},
      {{0, 1, 1, 2}, {0, 1, 2, 3}, 2, {}, "a tie"},
      {{0, 2, 1}, {0, 1, 2}, 2, {}, "neither rising nor falling"},
      {{0, std::nan(""), 2}, {0, 1, 2}, 2, {}, "no number"},
      {{1}, {1}, 4, {}, "one point"},
      {{}, {}, 4, {}, "none"},
  };
  for (const auto& r : rows) {
    const auto [table, stat] = makelut_stat(r.x, r.y);
    EXPECT_EQ(stat, r.stat) << r.why;
    EXPECT_EQ(table, r.want) << r.why;
  }
}

TEST(Lut, IsRepairedOverPosition) {
  EXPECT_EQ(makelut_nostat(values{3, 2, 1}, values{30, 20, 10}), (lut{{1, 2, 3}, {10, 20, 30}}));
  EXPECT_EQ(makelut_nostat(values{7}, values{1}), (lut{{7}, {1}})) << "one point";
  EXPECT_EQ(makelut_nostat(values{}, values{}), lut{});

  const values tied{0, 0.1, 0.1, 0.3, 0.5, 0.9, 1}, y{5, 1, 2, 8, 3, 0, 4};
  const lut repaired = makelut_nostat(tied, y);
  EXPECT_EQ(repaired.y, y) << "the ordinates stay";
  EXPECT_EQ(repaired.x.front(), 0);
  EXPECT_NEAR(repaired.x.back(), 1, 1e-15);
  for (std::size_t i = 1; i < tied.size(); ++i) {
    EXPECT_GE(repaired.x[i], repaired.x[i - 1]);
    EXPECT_NEAR(repaired.x[i], tied[i], 0.05) << i;
  }
  EXPECT_EQ(makelut_nostat(values{0, 1, 0.5, 0}, values{1, 2, 3, 4}).y, (values{4, 3, 2, 1}))
      << "equal ends: reversed";
}

TEST(Lut, InterpolationExtendsTheEndSegments) {
  const lut t{{0, 1, 3}, {0, 10, 14}};
  const struct {
    double xq, want;
    const char* why;
  } rows[] = {{-0.5, -5, "first segment extended"},
              {0, 0, "first point"},
              {0.25, 2.5, "first segment"},
              {1, 10, "interior point"},
              {2, 12, "last segment"},
              {3, 14, "last point"},
              {4, 16, "last segment extended"}};
  for (const auto& r : rows) EXPECT_EQ(interp(t, r.xq), r.want) << r.why;
  EXPECT_TRUE(std::isnan(interp({{1}, {1}}, 1))) << "one point makes no line";
  EXPECT_TRUE(std::isnan(interp({}, 1)));
}

TEST(Lut, AnInterpolatorGivesTheBitsOfTheScan) {
  lut even{linspace(0, 1, 256), {}}, shifted{linspace(-3.7, 11.1, 97), {}}, uneven, jittered = even;
  for (int i = 0; i < 90; ++i) uneven.x.push_back(std::pow(i / 89.0, 2.2));
  for (std::size_t i = 0; i < 256; ++i) jittered.x[i] += 0.0018 * std::sin(7.0 * static_cast<double>(i));
  lut falling = uneven, tied = even, zigzag = even;
  std::ranges::reverse(falling.x);
  for (std::size_t i = 0; i < 256; ++i) tied.x[i] = std::floor(static_cast<double>(i) / 3);
  for (std::size_t i = 0; i < 256; ++i) zigzag.x[i] += i % 5 == 0 ? -0.03 : 0;
  const std::pair<lut, const char*> tables[] = {{even, "even"},
                                                {shifted, "even, elsewhere"},
                                                {jittered, "nearly even: looked up by index, up to one segment off"},
                                                {uneven, "rising: by bisection"},
                                                {falling, "falling"},
                                                {tied, "ties"},
                                                {zigzag, "up and down"},
                                                {{{0.25, 0.75}, {}}, "two points"},
                                                {{{1e-320, 2e-320, 3e-320}, {}}, "steps whose reciprocal overflows"},
                                                {{{5}, {}}, "one point: no number, either way"}};
  for (auto [t, why] : tables) {
    SCOPED_TRACE(why);
    for (const double x : t.x) t.y.push_back(std::cos(3 * x) + x);
    const interpolator fast(t);
    values queries{-inf, -1e9, -0.5, 1.5, 1e9, inf, std::nan("")};
    for (std::size_t i = 0; i < t.x.size(); ++i) {
      const double x = t.x[i], next = t.x[std::min(i + 1, t.x.size() - 1)];
      queries.insert(queries.end(), {x, std::nextafter(x, -inf), std::nextafter(x, inf), 0.5 * (x + next)});
    }
    for (const double q : queries) {
      const double want = interp(t, q), got = fast(q);
      EXPECT_TRUE(got == want || (std::isnan(got) && std::isnan(want))) << q << ": " << got << " not " << want;
    }
  }
}

TEST(Lut, ValidityAndExchange) {
  const struct {
    lut t;
    bool valid;
    const char* why;
  } rows[] = {{{}, false, "never built"},        {{{1}, {}}, false, "no ordinates"},
              {{{0, 1}, {0}}, false, "lengths"}, {{{1}, {1}}, true, "one point is enough"},
              {{{0, 0}, {0, 1}}, false, "tie"},  {{{0, 1}, {5, 5}}, true, "ordinates may do as they like"}};
  for (const auto& r : rows) EXPECT_EQ(isvalid_lut(r.t), r.valid) << r.why;
  lut t{{0, 1}, {3, 2}};
  EXPECT_EQ(invlut(t), (lut{{3, 2}, {0, 1}})) << "neither sorted nor checked";
  reset_lut(t);
  EXPECT_EQ(t, lut{});

  EXPECT_TRUE(increasing(values{1, 2, 3}) && !decreasing(values{1, 2, 3}));
  EXPECT_TRUE(decreasing(values{3, 2}) && !increasing(values{3, 2}));
  EXPECT_FALSE(increasing(values{1, 1}) || decreasing(values{1, 1})) << "equal neighbours";
  EXPECT_TRUE(increasing(values{1}) && decreasing(values{1}) && increasing(values{}) && decreasing(values{}));
}

TEST(Grid, HasItsEndsExactAndItsPointsDirect) {
  EXPECT_EQ(linspace(0, 1, 1), (values{1})) << "the end is written last";
  EXPECT_TRUE(linspace(0, 1, 0).empty());
  EXPECT_EQ(oldlinspace(0, 1).size(), 100u);
  const values g = linspace(0.1, 0.7, 50);
  EXPECT_EQ(g.front(), 0.1);
  EXPECT_EQ(g.back(), 0.7);
  for (std::size_t i = 1; i < 49; ++i) EXPECT_EQ(g[i], 0.1 + static_cast<double>(i) * (0.7 - 0.1) / 49);
}

TEST(Smoothing, IsSampledAtItsAbscissaeOrOnAGrid) {
  const values x{0, 0.1, 0.3, 0.6, 1}, y{0, 0.02, 0.1, 0.4, 1};
  const values grid = iba(x, y, 3, 0.0, 11), own = iba(x, y, 3);
  ASSERT_EQ(grid.size(), 11u);
  ASSERT_EQ(own.size(), x.size());
  EXPECT_EQ(grid.front(), 0);
  EXPECT_NEAR(grid.back(), 1, 3e-16);
  EXPECT_NEAR(grid[6], own[3], 1e-15) << "0.6 is on both";
  for (std::size_t i = 0; i < y.size(); ++i) EXPECT_NEAR(own[i], y[i], 0.01);
}

}  // namespace
}  // namespace corvantile
