#include "numerics/cubicspline.hpp"

#include <cmath>
#include <gtest/gtest.h>
#include <vector>

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

TEST(Spline, AFactoredSystemServesManyValuesWithTheBitsOfADenseSolve) {
  const spline_system system(uneven);
  for (const auto& y : {std::vector<double>{1, -2, 0.5, 4, 3, 1}, std::vector<double>{0, 0.1, 0.2, 0.7, 0.9, 1.5}}) {
    std::vector<double> d(6);
    system.slopes(y, d);
    EXPECT_EQ(d, slopes_of(uneven, y, 4));
  }
}

TEST(Spline, TooFewKnotsAreHarmless) {
  EXPECT_EQ(slopes_of({0, 2}, {1, 5}, 2), (std::vector<double>{2, 2})) << "two natural knots: a line";
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
