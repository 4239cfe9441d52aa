#include "numerics/cubicspline.hpp"

#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <vector>

#include "numerics/linsolv.hpp"
#include "numerics/ppoly.hpp"

namespace corvantile {
namespace {

const std::vector<double> uneven{-1, -0.25, 0.5, 2, 2.5, 4};

double cubic(double x) { return 2 - x + 0.5 * x * x - 3 * x * x * x; }
double cubic_slope(double x) { return -1 + x - 9 * x * x; }

template <class F>
std::vector<double> sampled(const std::vector<double>& x, F f) {
  std::vector<double> y;
  for (const double v : x) y.push_back(f(v));
  return y;
}

std::vector<double> slopes_of(const std::vector<double>& x, const std::vector<double>& y, int endcond, double d1 = 0,
                              double dn = 0) {
  std::vector<double> d(x.size());
  spline(x, y, d, endcond, d1, dn);
  return d;
}

TEST(Spline, ReproducesWhatEachEndConditionAdmits) {
  const auto line = [](double x) { return 3 * x - 1; };
  const struct {
    int endcond;
    double (*f)(double);
    double (*slope)(double);
    double d1, dn;
    const char* why;
  } rows[] = {
      {4, cubic, cubic_slope, 0, 0, "not-a-knot: any cubic"},
      {0, cubic, cubic_slope, 0, 0, "an unknown condition is not-a-knot"},
      {1, cubic, cubic_slope, cubic_slope(-1), cubic_slope(4), "clamped: a cubic with its own slopes"},
      {2, line, [](double) { return 3.; }, 0, 0, "natural: a line"},
      {1, line, [](double) { return 3.; }, 3, 3, "clamped: a line"},
  };
  for (const auto& r : rows) {
    SCOPED_TRACE(r.why);
    const auto d = slopes_of(uneven, sampled(uneven, r.f), r.endcond, r.d1, r.dn);
    for (std::size_t i = 0; i < d.size(); ++i) EXPECT_NEAR(d[i], r.slope(uneven[i]), 2e-13) << i;
  }
  for (const double d : slopes_of({0, 0.25, 1}, {0, 0.25, 1}, 1, 1, 1)) EXPECT_EQ(d, 1) << "y = x, clamped";
}

TEST(Spline, IsTwiceContinuouslyDifferentiableAndKeepsItsEndConditions) {
  const std::vector<double> y{1, -2, 0.5, 4, 3, 1};  // equal ends, for the periodic case
  for (const int endcond : {1, 2, 3, 4}) {
    SCOPED_TRACE(endcond);
    const auto d = slopes_of(uneven, y, endcond, 0.7, -1.3);
    const ppoly second = ppder(ppder(hermite2ppoly(uneven, y, d)));
    const ppoly third = ppder(second);
    const std::size_t last = second.polys.size() - 1;
    const auto at_left = [](const ppoly& pp, std::size_t j) { return pp.polys[j].coef[0]; };
    const auto at_right = [](const ppoly& pp, std::size_t j) {
      return polyval(pp.polys[j], pp.knots[j + 1] - pp.knots[j]);
    };
    for (std::size_t j = 0; j < last; ++j) EXPECT_NEAR(at_right(second, j), at_left(second, j + 1), 5e-14) << j;
    switch (endcond) {
      case 1:
        EXPECT_EQ(d.front(), 0.7);
        EXPECT_EQ(d.back(), -1.3);
        break;
      case 2:
        EXPECT_NEAR(at_left(second, 0), 0, 1e-14);
        EXPECT_NEAR(at_right(second, last), 0, 1e-14);
        break;
      case 3:
        EXPECT_NEAR(d.front(), d.back(), 1e-14);
        EXPECT_NEAR(at_left(second, 0), at_right(second, last), 5e-14);
        break;
      default:
        EXPECT_NEAR(at_left(third, 0), at_left(third, 1), 2e-13);
        EXPECT_NEAR(at_left(third, last - 1), at_left(third, last), 2e-13);
    }
  }
}

TEST(Spline, PeriodicSineConvergesWithTheFourthPowerOfTheStep) {
  std::array<double, 2> worst{};
  for (std::size_t refine = 0; refine < 2; ++refine) {
    const std::size_t n = refine == 0 ? 17 : 33;
    std::vector<double> x;
    for (std::size_t i = 0; i < n; ++i)
      x.push_back(2 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(n - 1));
    auto y = sampled(x, [](double v) { return std::sin(v); });
    y.back() = y.front();
    const auto d = slopes_of(x, y, 3);
    for (std::size_t i = 0; i < n; ++i) worst[refine] = std::max(worst[refine], std::abs(d[i] - std::cos(x[i])));
  }
  EXPECT_LT(worst[1], 1e-5);
  EXPECT_NEAR(worst[0] / worst[1], 16, 0.5);
}

TEST(Spline, AFactoredSystemServesManyValuesWithTheBitsOfADenseSolve) {
  const spline_system system(uneven);
  for (const auto& y : {std::vector<double>{1, -2, 0.5, 4, 3, 1}, std::vector<double>{0, 0.1, 0.2, 0.7, 0.9, 1.5}}) {
    std::vector<double> d(6);
    system.slopes(y, d);
    EXPECT_EQ(d, slopes_of(uneven, y, 4));
  }

  // Natural spline on knots 0, 1, 2, 3 as a plain system: rows 2 1, 1 4 1 and 1 2.
  matrix a(4, 4);
  for (std::size_t i = 0; i < 4; ++i) a(i, i) = i == 0 || i == 3 ? 2 : 4;
  for (std::size_t i = 0; i < 3; ++i) a(i, i + 1) = a(i + 1, i) = 1;
  std::vector<double> b{3 * (0.3 - 0.1), 3 * ((0.3 - 0.1) + (0.2 - 0.3)), 3 * ((0.2 - 0.3) + (0.9 - 0.2)),
                        3 * (0.9 - 0.2)};
  solve(a, b);
  EXPECT_EQ(slopes_of({0, 1, 2, 3}, {0.1, 0.3, 0.2, 0.9}, 2), b);
}

TEST(Spline, TooFewKnotsAreHarmless) {
  EXPECT_EQ(slopes_of({0, 2}, {1, 5}, 2), (std::vector<double>{2, 2})) << "two natural knots: a line";
  EXPECT_EQ(slopes_of({0, 2}, {1, 5}, 1, 7, 8), (std::vector<double>{7, 8})) << "two clamped knots: as given";
  EXPECT_EQ(slopes_of({0, 2}, {1, 5}, 3), (std::vector<double>{2, 2})) << "two periodic knots";
  for (const double d : slopes_of({0, 1}, {0, 1}, 4)) EXPECT_TRUE(std::isnan(d)) << "two, not-a-knot";
  slopes_of({0, 1, 3}, {0, 1, 0}, 4);  // singular: any slopes, but within the arrays
  for (const int endcond : {1, 2, 3, 4}) {
    EXPECT_TRUE(std::isnan(slopes_of({0}, {1}, endcond)[0])) << endcond;
    EXPECT_TRUE(slopes_of({}, {}, endcond).empty());
    slopes_of({1, 1, 1, 1}, {0, 1, 2, 3}, endcond);  // equal knots
  }
}

}  // namespace
}  // namespace corvantile
