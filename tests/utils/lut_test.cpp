#include "corvantile/utils/lut.hpp"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace corvantile {

using values = std::vector<double>;
constexpr double inf = std::numeric_limits<double>::infinity();
const double nan = std::nan("");
static bool same(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }

TEST(Lut, IsBuiltOrSaysWhyNotOrIsRepaired) {
  const values up{1, 2, 4}, down{3, 2, 1}, one{1};
  EXPECT_EQ(makelut_stat(up, down).table, (lut{up, down})) << "ordinates need not rise";
  EXPECT_EQ(makelut_stat(down, up).table, (lut{{1, 2, 3}, {4, 2, 1}})) << "falling: reversed";
  EXPECT_EQ(makelut_stat(one, up).stat, 1) << "lengths are checked first";
  EXPECT_EQ(makelut_stat(one, one).stat, 4);
  EXPECT_EQ(makelut_stat({}, {}).stat, 4);
  for (const values& x : {values{0, 1, 1, 2}, {2, 1, 1}, {0, 2, 1}, {0, nan, 2}})
    EXPECT_EQ(std::pair(makelut_stat(x, x).stat, isvalid_lut({x, x})), std::pair(2, false));
  EXPECT_TRUE(isvalid_lut({one, one}));
  for (const lut& none : {lut{}, {one, {}}}) EXPECT_FALSE(isvalid_lut(none));
  EXPECT_EQ(makelut_nostat(values{0, 1, 0}, down).y, (values{1, 2, 3})) << "equal ends: reversed";
  const values tied{0, 0.1, 0.1, 0.3, 0.5, 0.9, 1}, y{5, 1, 2, 8, 3, 0, 4};
  const lut repaired = makelut_nostat(tied, y);
  EXPECT_TRUE(increasing(repaired.x));
  EXPECT_EQ(repaired.y, y) << "the ordinates stay";
  for (std::size_t i = 0; i < tied.size(); ++i) EXPECT_NEAR(repaired.x[i], tied[i], 0.05) << i;
}

TEST(Lut, AnInterpolatorGivesTheBitsOfTheScan) {
  for (const auto& [x, y] : {std::pair{-0.5, -5.}, {0., 0.}, {1., 10.}, {2., 12.}, {4., 16.}})
    EXPECT_EQ(interp({{0, 1, 3}, {0, 10, 14}}, x), y) << "the end segments continue";

  const auto table = [](std::size_t n, auto abscissa) {
    lut t{values(n), values(n)};
    for (std::size_t i = 0; i < n; ++i) t.x[i] = abscissa(static_cast<double>(i));
    for (std::size_t i = 0; i < n; ++i) t.y[i] = std::cos(i);
    return t;
  };
  const std::pair<const char*, lut> tables[] = {
      {"even: by index", table(256, [](double i) { return -3.7 + i * 14.8 / 255; })},
      {"nearly even: the index is off by up to one", table(256, [](double i) { return i + 0.24 * std::sin(7 * i); })},
      {"wavy: too uneven for an index", table(256, [](double i) { return i + 1.1 * std::sin(i / 255 * 31.4); })},
      {"rising: by bisection", table(90, [](double i) { return std::pow(i / 89, 2.2); })},
      {"up, down and ties: by scan", table(256, [](double i) { return i - std::fmod(i, 5) * 2; })},
      {"steps whose reciprocal overflows", table(5, [](double i) { return (i + 1) * 1e-320; })},
      {"one point: NaN either way", table(1, [](double) { return 5; })}};
  for (const auto& [why, t] : tables) {
    const interpolator fast(t);
    for (const double x : t.x)
      for (const double q : {x, std::nextafter(x, -inf), std::nextafter(x, inf), x + 0.3, x - 1e9, x + 1e9, inf, nan})
        EXPECT_PRED2(same, fast(q), interp(t, q)) << why << q;
  }
}

TEST(Grid, HasItsEndsExactAndItsPointsDirect) {
  EXPECT_EQ(linspace(0, 1, 1), (values{1})) << "the end is written last";
  EXPECT_TRUE(linspace(0, 1, 0).empty());
  const values g = linspace(0.1, 0.7, 50);
  EXPECT_EQ(g.back(), 0.7);
  for (std::size_t i = 0; i < 49; ++i) EXPECT_EQ(g[i], 0.1 + static_cast<double>(i) * (0.7 - 0.1) / 49);
  // With flat samples only the least slope is left, and normalisation turns that into the identity.
  const values x{0.5, 0.6, 0.7, 0.8, 1}, even = iba(x, values(5), 4, 0.2, 6);
  for (std::size_t i = 0; i < 6; ++i) EXPECT_NEAR(even[i], 0.5 + static_cast<double>(i) / 10, 1e-6);
}

}  // namespace corvantile
