#include "corvantile/numerics/cubicspline.hpp"

#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <vector>

#include "corvantile/numerics/ppoly.hpp"

namespace corvantile {

using vec = std::vector<double>;
const vec uneven{-1, -0.25, 0.5, 2, 2.5, 4};

static vec slopes_of(const vec& x, const vec& y, int endcond, double d1 = 0, double dn = 0) {
  vec d(x.size());
  spline(x, y, d, endcond, d1, dn);
  return d;
}

TEST(Spline, ReproducesACubicWithoutAKnotAtTheEndsOrWithItsOwnSlopes) {
  vec cubic;
  for (const double x : uneven) cubic.push_back(2 - x + 0.5 * x * x - 3 * x * x * x);
  for (const int endcond : {4, 0, 1}) {  // an unknown condition is not-a-knot
    const vec d = slopes_of(uneven, cubic, endcond, -11, -141);
    for (std::size_t i = 0; i < 6; ++i) EXPECT_NEAR(d[i], -1 + uneven[i] - 9 * uneven[i] * uneven[i], 2e-13) << i;
  }
}

TEST(Spline, IsTwiceContinuouslyDifferentiableAndKeepsItsEndConditions) {
  const vec y{1, -2, 0.5, 4, 3, 1};  // equal ends, for the periodic one
  for (const std::size_t endcond : {1u, 2u, 3u, 4u}) {
    const vec d = slopes_of(uneven, y, static_cast<int>(endcond), 0.7, -1.3);
    const ppoly second = ppder(ppder(hermite2ppoly(uneven, y, d)));
    const auto left = [&](std::size_t j) { return second.polys[j].coef[0]; };
    const auto right = [&](std::size_t j) { return polyval(second.polys[j], uneven[j + 1] - uneven[j]); };
    for (std::size_t j = 0; j < 4; ++j) EXPECT_NEAR(right(j), left(j + 1), 5e-14) << endcond << j;
    const auto third = [&](std::size_t j) { return second.polys[j].coef[1]; };
    const std::array off{std::abs(d[0] - 0.7) + std::abs(d[5] + 1.3), std::abs(left(0)) + std::abs(right(4)),
                         std::abs(d[0] - d[5]) + std::abs(left(0) - right(4)),
                         std::abs(third(0) - third(1)) + std::abs(third(3) - third(4))};
    EXPECT_NEAR(off[endcond - 1], 0, 4e-13) << endcond;
  }
}

TEST(Spline, TooFewOrEqualKnotsAreHarmless) {
  EXPECT_EQ(slopes_of({0, 2}, {1, 5}, 2), (vec{2, 2})) << "two natural knots: a line";
  for (const int endcond : {1, 2, 3, 4}) {
    EXPECT_TRUE(std::isnan(slopes_of({0}, {1}, endcond)[0])) << endcond;
    EXPECT_EQ(slopes_of({}, {}, endcond), vec{}) << endcond;
    for (const vec& x : {vec{0, 1}, {0, 1, 3}, {1, 1, 1, 1}})
      slopes_of(x, x, endcond);  // must stay within its arrays
  }
}

}  // namespace corvantile
