#include "corvantile/numerics/ppoly.hpp"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace corvantile {

using vec = std::vector<double>;
constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

const ppoly identity = makeppoly({0, 1, 2}, {makepoly({0, 1}), makepoly({1, 1})});
/// 1/8 + x on [0, 1], smoothly joined by a parabola on [1, 2].
const ppoly bent = makeppoly({0, 1, 2}, {makepoly({0.125, 1}), makepoly({1.125, 1, 0.5})});

TEST(Ppoly, TheLeftPieceOwnsAKnotAndTheEndPiecesGoOn) {
  ppoly step = makeppoly({0, 1, 2}, {makepoly({10, 1}), makepoly({20, 1})});
  vec values;
  for (const double x : {-1., 0., 1., 1.5, 2., 2.5}) values.push_back(ppval(step, x));
  EXPECT_EQ(values, (vec{9, 10, 11, 20.5, 21, 21.5}));
  EXPECT_TRUE(std::isnan(ppval(step, nan)));
  EXPECT_TRUE(std::isnan(ppval({{0}, {}}, 0)));
  EXPECT_EQ(std::pair(pp_getpoly(step, -4), pp_getpoly(step, 99)), std::pair(step.polys[0], step.polys[1]));
  for (const int i : {-1, 0, 1, 2}) EXPECT_EQ(pp_setpoly(step, makepoly({7}), i), i == 0 || i == 1) << i;
}

TEST(Ppoly, CalculusAndHermite) {
  const ppoly F = ppint(identity, 2);
  EXPECT_EQ(polyval(F.polys[1], 0), 2.5) << "the right piece starts where the left one ends";
  EXPECT_EQ(ppdefint(identity, 0, 2), 2);
  EXPECT_EQ(ppder(F), identity);
  const vec x{-1, 0.5, 3}, y{2, -1, 4}, d{0.5, 3, -2};
  const ppoly pp = hermite2ppoly(x, y, d), slope = ppder(pp);
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_NEAR(ppval(pp, x[i]), y[i], 1e-13);
    EXPECT_NEAR(ppval(slope, x[i]), d[i], 1e-13);
  }
}

TEST(Ppoly, BisectionInvertsRisingAndFallingFunctions) {
  const ppoly down = 3.0 - bent;
  EXPECT_NEAR(ppsolve_s(bent, 0.625, 2, 0, 1e-14), 0.5, 1e-14) << "bracket given backwards";
  EXPECT_NEAR(ppsolve_s(down, 2.375, 0, 2, -1), 0.5, 1e-14) << "no bracket is that narrow, but it ends";
  EXPECT_NEAR(ppsolve_s(down, 99, 0, 2, 1e-14), 0, 1e-14) << "out of reach: the nearer end";
  EXPECT_NEAR(ppsolve_s(0.0 * bent, 1, 0, 2, 1e-14), 0, 1e-14) << "a constant counts as falling";
  EXPECT_EQ(ppsolve_s(identity, 1.0, 0, 2, 1), 1) << "a bracket as wide as tol is done";
  EXPECT_EQ(ppsolve_s(identity, 1.0, 0, 2, 0.99), 0.5) << "f(mid) = y moves the upper end: 1, then 0.5";
  matrix y(2, 3);
  std::ranges::copy(vec{0.125, 0.3, 1.125, 2.0, 2.625, 99.0}, y.data().begin());
  const vec x = ppsolve_v(bent, y.data(), 0, 2, 1e-12);
  for (std::size_t i = 0; i < 6; ++i) EXPECT_EQ(x[i], ppsolve_s(bent, y.data()[i], 0, 2, 1e-12)) << i;
  EXPECT_EQ(ppsolve_m(bent, y, 0, 2, 1e-12)(1, 2), x[5]);
  EXPECT_EQ(ppsolve_v(bent, {}, 0, 2, 1e-12), vec{});
}

TEST(Ppoly, InsertingAKnotKeepsTheFunctionEverywhere) {
  for (const double knot : {-2., 0.5, 1., 1 + 4e-15, 1 + 8e-15, 1.25, 3.}) {
    const ppoly q = insert_knot(bent, knot);
    // Knots within 10 epsilon of the largest count as one.
    ASSERT_EQ(q.knots.size(), std::abs(knot - 1) < 5e-15 ? 3u : 4u) << knot;
    EXPECT_TRUE(std::ranges::is_sorted(q.knots)) << knot;
    ASSERT_EQ(q.polys.size() + 1, q.knots.size()) << knot;
    for (double x = -3; x < 4; x += 0.125) EXPECT_NEAR(ppval(q, x), ppval(bent, x), 2e-15) << knot << " " << x;
  }
}

TEST(Ppoly, ArithmeticActsOnTheValues) {
  const ppoly g = makeppoly({-1, 0.5, 3}, {makepoly({1, 2}), makepoly({4, -1, 2})});
  for (const double x : {-2., -0.5, 0.25, 0.75, 1.5, 2.5, 4.}) {
    const double f = ppval(bent, x), gx = ppval(g, x), tol = 1e-13 * (1 + std::abs(f * f * f * gx));
    EXPECT_NEAR(ppval((bent - g) * (bent + g), x), (f - gx) * (f + gx), tol * std::abs(gx)) << x;
    EXPECT_NEAR(ppval(3.0 - (2.0 + 3.0 * pp_to_power(bent, 3)) - 0.5, x), 0.5 - 3 * f * f * f, tol) << x;
  }
  EXPECT_EQ((makeppoly({0, 1}, {makepoly({49})}) / 49.0).polys[0].coef[0], 49 * (1.0 / 49)) << "by the reciprocal";
}

TEST(Ppoly, NonsenseKnotsStayInsideTheirArrays) {
  for (const vec& knots : {vec{nan, nan, nan}, {0, inf, inf}, {-inf, nan, inf}, {2, 1, 0}, {1, 1, 1 + 1e-15}}) {
    const ppoly pp = makeppoly(knots, identity.polys), shorter = makeppoly({0, 1}, {makepoly({0, 1})});
    for (const ppoly& r : {insert_knot(pp, nan), insert_knot(pp, inf), pp * identity, pp + shorter, ppint(pp)})
      EXPECT_EQ(r.knots.size(), r.polys.size() + 1) << ppval(pp, nan) << ppsolve_s(pp, 0.5, 0, inf, 1e-12);
  }
}

}  // namespace corvantile
