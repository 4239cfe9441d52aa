#include "corvantile/numerics/monotone_smoothing.hpp"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <random>

#include "corvantile/numerics/packed_curve.hpp"

namespace corvantile {

// On knots unlike those of a fit: some in between, one in common.
const ppoly other = makeppoly({-1, 0.1, 0.5, 0.55}, {makepoly({1, 2}), makepoly({3}), makepoly({0, 1, 2, 3})});

TEST(MonotoneFit, CostHasTheBitsOfTheGeneralAlgebra) {
  std::mt19937 random(5);
  std::normal_distribution<double> normal;
  for (int trial = 0; trial < 360; ++trial) {
    const std::size_t npts = 4 + static_cast<std::size_t>(trial % 9);
    std::vector<double> x{-0.3, 1.3}, y, p(npts);  // samples at the knots, just beside them, and beyond [0, 1]
    for (double& v : p) {
      const double knot = static_cast<double>(&v - p.data()) / static_cast<double>(npts - 1);
      x.insert(x.end(), {knot, std::nextafter(knot, -1.0), std::nextafter(knot, 2.0), normal(random)});
      v = std::pow(10.0, trial % 7 - 3) * normal(random);
    }
    for (const double v : x) y.push_back(v * v + 0.05 * normal(random));
    monotone_fit fit(x, y, npts, 0.1 * (trial % 3));
    const ppoly f = fit.make_func(p), scaled = f / ppval(f, 1.0);  // no longer continuous to the last bit
    const packed_curve packed(scaled);
    const packed_pair pair(scaled, other);
    double sum = 0;
    for (std::size_t i = 0; i < x.size(); ++i) {
      sum += (y[i] - ppval(f, x[i])) * (y[i] - ppval(f, x[i]));
      ASSERT_EQ(packed(x[i]), ppval(scaled, x[i])) << x[i];
      ASSERT_EQ(pair(x[i])[0], ppval(scaled, x[i])) << x[i];
      ASSERT_EQ(pair(x[i])[1], ppval(other, x[i])) << x[i];
    }
    ASSERT_EQ(fit.cost(p), sum) << npts << " knots";
  }
}

TEST(MonotoneSmoothing, KeepsWhatItCanExpress) {
  std::vector<double> x, dip;
  for (int i = 0; i <= 16; ++i) x.push_back(i / 16.0);
  for (const double v : x) dip.push_back(2 * v * v - v);
  const auto p0 = monotone_fit(x, dip, 9, 0.5).starting_point();  // slope 4 x - 1 if that exceeds 0.5
  for (std::size_t i = 0; i < 9; ++i) EXPECT_NEAR(p0[i] * p0[i], std::max(4 * x[2 * i] - 1.5, 0.0), 1e-10) << i;

  const ppoly slope = ppder(pp_iba(x, dip, 8));
  for (const double at : x) EXPECT_GE(ppval(slope, at), -1e-12) << "never falls, even if the samples do";
  const ppoly line = pp_iba(x, x);
  EXPECT_EQ(line.knots, (std::vector<double>{0, 0.2, 2 / 5.0, 3 / 5.0, 0.8, 1})) << "5 pieces by default";
  EXPECT_EQ(pp_iba(x, x, -1), line) << "a negative number means the default too";
  EXPECT_TRUE(std::isnan(ppval(pp_iba(x, x, 0), 0.5))) << "no pieces, no curve";
  // With flat samples only the least slope is left, and normalisation turns that into x itself.
  const ppoly flat = pp_iba(x, std::vector<double>(17), 4, 0.2);
  for (const double at : x) EXPECT_NEAR(std::abs(ppval(line, at) - at) + std::abs(ppval(flat, at) - at), 0, 1e-6);
}

}  // namespace corvantile
