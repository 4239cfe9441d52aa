#include "numerics/ppoly.hpp"

#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace corvantile {
namespace {

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// f(x) = x in two pieces.
ppoly identity() { return makeppoly({0, 1, 2}, {makepoly({0, 1}), makepoly({1, 1})}); }

/// 1/8 + x on [0, 1] and a parabola on [1, 2] that joins it smoothly.
ppoly bent() { return makeppoly({0, 1, 2}, {makepoly({0.125, 1}), makepoly({1.125, 1, 0.5})}); }

TEST(Ppoly, TheLeftPieceOwnsAKnotAndTheEndPiecesGoOn) {
  const ppoly step = makeppoly({0, 1, 2}, {makepoly({10, 1}), makepoly({20, 1})});
  const struct {
    double x, want;
    const char* why;
  } rows[] = {{0, 10, "first knot"},         {1, 11, "interior knot: left piece at its end"},
              {1.5, 20.5, "second piece"},   {2, 21, "last knot"},
              {2.5, 21.5, "right of knots"}, {-1, 9, "left of knots"}};
  for (const auto& r : rows) EXPECT_EQ(ppval(step, r.x), r.want) << r.why;
  EXPECT_TRUE(std::isnan(ppval(step, nan)));
  EXPECT_TRUE(std::isnan(ppval({{0}, {}}, 0))) << "one knot, no piece";
}

TEST(Ppoly, GetClampsTheIndexAndSetRefusesIt) {
  ppoly pp = identity();
  EXPECT_EQ(pp_getpoly(pp, -4), pp.polys[0]);
  EXPECT_EQ(pp_getpoly(pp, 99), pp.polys[1]);
  const polynomial p = makepoly({7});
  for (const int i : {-1, 2, 99}) EXPECT_FALSE(pp_setpoly(pp, p, i));
  EXPECT_EQ(pp, identity()) << "refused: unchanged";
  EXPECT_TRUE(pp_setpoly(pp, p, 1));
}

TEST(Ppoly, TheAntiderivativeIsContinuousAndUndoneByTheDerivative) {
  const ppoly F = ppint(identity(), 2);
  EXPECT_EQ(ppval(F, 2), 4);
  EXPECT_EQ(polyval(F.polys[1], 0), 2.5) << "the right piece starts where the left one ends";
  EXPECT_EQ(ppdefint(identity(), 0, 2), 2);
  EXPECT_EQ(ppder(F), identity());
}

TEST(Ppoly, HermiteMatchesValuesAndSlopes) {
  const std::array x{-1., 0.5, 3.}, y{2., -1., 4.}, d{0.5, 3., -2.};
  const ppoly pp = hermite2ppoly(x, y, d);
  const ppoly slope = ppder(pp);
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_NEAR(ppval(pp, x[i]), y[i], 1e-14) << i;
    EXPECT_NEAR(ppval(slope, x[i]), d[i], 1e-14) << i;
  }
}

TEST(Ppoly, BisectionInvertsRisingAndFallingFunctions) {
  const ppoly up = bent(), down = 3.0 - bent();
  const struct {
    const ppoly& pp;
    double y, a, b, tol, want;
    const char* why;
  } rows[] = {
      {up, 0.625, 0, 2, 1e-14, 0.5, "rising"},
      {up, 0.625, 2, 0, 1e-14, 0.5, "bracket given backwards"},
      {down, 2.375, 0, 2, 1e-14, 0.5, "falling"},
      {up, 2.625, 0, 4, 1e-14, 2, "in the extrapolation's bracket, at the last knot"},
      {up, 99, 0, 2, 1e-14, 2, "above the range: the end where f is highest"},
      {up, -99, 0, 2, 1e-14, 0, "below the range"},
      {down, 99, 0, 2, 1e-14, 0, "above the range of a falling function"},
      {up, 0.625, 0.25, 0.5, 1, 0.375, "bracket within tol: its middle"},
      {up, 1.125, 0, 2, 0, 1, "tol no bracket can reach: ends all the same"},
      {up, 1.125, 0, 2, -1, 1, "negative tol"},
  };
  for (const auto& r : rows) EXPECT_NEAR(ppsolve_s(r.pp, r.y, r.a, r.b, r.tol), r.want, 1e-14) << r.why;
  EXPECT_EQ(ppsolve_s(identity(), 1.0, 0, 2, 0.99), 0.5) << "f(mid) = y moves the upper end: 1, then 0.5";
  for (const double end : {inf, -inf, nan}) ppsolve_s(up, 1, 0, end, 1e-9);  // must return
}

TEST(Ppoly, ManyTargetsAtOnceAreSolvedAsEachAlone) {
  const std::array y{0.125, 0.3, 1.125, 2.0, 2.625, 99.0};
  const std::vector<double> x = ppsolve_v(bent(), y, 0, 2, 1e-12);
  matrix ym(2, 3);
  std::ranges::copy(y, ym.data().begin());
  const matrix xm = ppsolve_m(bent(), ym, 0, 2, 1e-12);
  for (std::size_t i = 0; i < y.size(); ++i) {
    EXPECT_EQ(x[i], ppsolve_s(bent(), y[i], 0, 2, 1e-12)) << i;
    EXPECT_EQ(xm.data()[i], x[i]) << i;
  }
  EXPECT_EQ(xm.rows(), 2u);
  EXPECT_TRUE(ppsolve_v(bent(), {}, 0, 2, 1e-12).empty());
}

TEST(Ppoly, InsertingAKnotKeepsTheFunctionEverywhere) {
  const ppoly pp = bent();
  const struct {
    double knot;
    std::vector<double> knots;
    const char* why;
  } rows[] = {
      {0.5, {0, 0.5, 1, 2}, "inside the first piece"},
      {1.25, {0, 1, 1.25, 2}, "inside the last piece"},
      {3, {0, 1, 2, 3}, "right of all"},
      {-2, {-2, 0, 1, 2}, "left of all"},
      {1, {0, 1, 2}, "there already"},
      {1 + 4e-15, {0, 1, 2}, "within 10 epsilon of the largest knot"},
      {1 + 8e-15, {0, 1, 1 + 8e-15, 2}, "just beyond that"},
  };
  for (const auto& r : rows) {
    SCOPED_TRACE(r.why);
    const ppoly q = insert_knot(pp, r.knot);
    EXPECT_EQ(q.knots, r.knots);
    ASSERT_EQ(q.polys.size() + 1, q.knots.size());
    for (const double x : {-3., -1., 0., 0.25, 0.5, 0.75, 1., 1.125, 1.5, 2., 2.5, 3.5})
      EXPECT_NEAR(ppval(q, x), ppval(pp, x), 2e-15) << x;
  }
}

TEST(Ppoly, ArithmeticActsOnTheValues) {
  const ppoly f = bent();
  const ppoly g = makeppoly({-1, 0.5, 3}, {makepoly({1, 2}), makepoly({4, -1, 2})});
  for (const double x : {-2., -0.5, 0.25, 0.75, 1.5, 2.5, 4.}) {
    SCOPED_TRACE(x);
    const double fx = ppval(f, x), gx = ppval(g, x);
    const struct {
      ppoly got;
      double want;
      const char* why;
    } rows[] = {{f + g, fx + gx, "f + g"},   {f - g, fx - gx, "f - g"},
                {f * g, fx * gx, "f * g"},   {3.0 + f, 3 + fx, "r + f"},
                {f + 3.0, fx + 3, "f + r"},  {3.0 - f, 3 - fx, "r - f"},
                {f - 3.0, fx - 3, "f - r"},  {3.0 * f, 3 * fx, "r * f"},
                {f / 3.0, fx / 3, "f / r"},  {pp_to_power(f, 3), fx * fx * fx, "f^3"},
                {pp_to_power(f, 0), 1, "1"}, {pp_to_power(f, -1), 1, "1 for negative powers"}};
    for (const auto& r : rows) EXPECT_NEAR(ppval(r.got, x), r.want, 1e-13 * (1 + std::abs(r.want))) << r.why;
  }
  EXPECT_EQ((f + g).knots, (std::vector<double>{-1, 0, 0.5, 1, 2, 3}));
  EXPECT_EQ(pp_over_real(f, 3.0), pp_times_real(f, 1.0 / 3.0)) << "one reciprocal, bit for bit";
}

TEST(Ppoly, NonsenseKnotsStayInsideTheirArrays) {
  const std::vector<double> odd[] = {{nan, nan, nan}, {0, inf, inf}, {-inf, nan, inf}, {2, 1, 0}, {1, 1, 1}};
  for (const auto& knots : odd) {
    const ppoly pp = makeppoly(knots, identity().polys);
    for (const double x : {nan, inf, -inf, 0., 5.}) {
      ppval(pp, x);
      const ppoly q = insert_knot(pp, x);
      EXPECT_EQ(q.knots.size(), q.polys.size() + 1);
    }
    ppsolve_s(pp, 0.5, 0, 1, 1e-12);
    for (const ppoly& r : {pp * identity(), identity() + pp, ppint(pp)})
      EXPECT_EQ(r.knots.size(), r.polys.size() + 1);
  }
  const ppoly close = makeppoly({0, 1, 1 + 1e-15}, identity().polys);
  EXPECT_EQ(pp_poly_count(close + makeppoly({0, 1}, {makepoly({0, 1})})), 2) << "more pieces than the other";
}

}  // namespace
}  // namespace corvantile
