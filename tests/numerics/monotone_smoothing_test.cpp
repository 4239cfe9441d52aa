#include "numerics/monotone_smoothing.hpp"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>

#include "numerics/packed_curve.hpp"

namespace corvantile {
namespace {

struct sample_set {
  std::vector<double> x, y;
};

// Noisy samples of a gamma curve, some of them at knots, on both sides of them and beyond [0, 1].
sample_set noisy_samples(std::mt19937& random, std::size_t npts) {
  std::uniform_real_distribution<double> anywhere(-0.3, 1.3), noise(-0.05, 0.05);
  sample_set s;
  for (int i = 0; i < 24; ++i) s.x.push_back(anywhere(random));
  for (std::size_t i = 0; i < npts; ++i) {
    const double knot = static_cast<double>(i) / static_cast<double>(npts - 1);
    s.x.insert(s.x.end(), {knot, std::nextafter(knot, -1.0), std::nextafter(knot, 2.0)});
  }
  for (const double v : s.x) s.y.push_back(std::copysign(std::pow(std::abs(v), 2.2), v) + noise(random));
  return s;
}

TEST(MonotoneFit, CostHasTheBitsOfTheGeneralAlgebra) {
  std::mt19937 random(5);
  std::normal_distribution<double> parameter;
  for (std::size_t npts = 4; npts <= 12; ++npts) {
    const auto [x, y] = noisy_samples(random, npts);
    for (const double mslope : {0.0, 0.2, 1e-9}) {
      monotone_fit fit(x, y, npts, mslope);
      for (int trial = 0; trial < 40; ++trial) {
        std::vector<double> p(npts);
        for (double& v : p) v = std::pow(10.0, trial % 7 - 3) * parameter(random);
        const ppoly f = fit.make_func(p);
        double sum = 0;
        for (std::size_t i = 0; i < x.size(); ++i) {
          const double residual = y[i] - ppval(f, x[i]);
          sum += residual * residual;
        }
        ASSERT_EQ(fit.cost(p), sum) << npts << " knots, least slope " << mslope;
        const ppoly scaled = f / ppval(f, 1.0);  // no longer continuous to the last bit
        const packed_curve packed(scaled);
        for (const double v : x) ASSERT_EQ(packed(v), ppval(scaled, v)) << v;
      }
    }
  }
}

TEST(MonotoneFit, StartsFromTheSlopeOfAFittedPolynomialWhereThatRises) {
  const std::vector<double> x{0, 0.1, 0.3, 0.5, 0.6, 0.8, 1};
  std::vector<double> y;
  for (const double v : x) y.push_back(2 * v * v - v);  // slope 4 x - 1: falls up to 1/4
  const auto p0 = monotone_fit(x, y, 9, 0.0).starting_point();
  for (std::size_t i = 0; i < p0.size(); ++i) {
    const double slope = 4 * static_cast<double>(i) / 8 - 1;
    EXPECT_NEAR(p0[i] * p0[i], std::max(slope, 0.0), 1e-10) << i;
  }
}

TEST(MonotoneSmoothing, NeverFallsAndRunsFromZeroToOne) {
  std::mt19937 random(11);
  for (const int pieces : {3, 5, 8}) {
    for (const double minslope : {0.0, 0.2}) {
      SCOPED_TRACE(pieces);
      const auto [x, y] = noisy_samples(random, 6);
      const ppoly f = pp_iba(x, y, pieces, minslope);
      EXPECT_EQ(pp_poly_count(f), pieces);
      EXPECT_EQ(ppval(f, 0), 0);
      EXPECT_NEAR(ppval(f, 1), 1, std::numeric_limits<double>::epsilon());
      // f = F / F(1) and F is the best of its kind: its slope is at least minslope, and F(1) is near the samples' 1.
      const ppoly slope = ppder(f);
      for (double at = 0; at <= 1; at += 1.0 / 1024) {
        EXPECT_GE(ppval(slope, at), minslope / 1.1 - 1e-12) << at;
      }
    }
  }
}

TEST(MonotoneSmoothing, ALeastSlopeHoldsExactlyWhereTheSamplesAreFlat) {
  // Flat samples: the parameters go to 0, the curve to minslope x, and normalisation makes that x itself.
  const std::vector<double> x{0, 0.25, 0.5, 0.75, 1};
  const ppoly f = pp_iba(x, std::vector<double>(5, 0.0), 4, 0.2);
  for (const double at : {0.1, 0.5, 0.9}) EXPECT_NEAR(ppval(f, at), at, 1e-6);
}

TEST(MonotoneSmoothing, KeepsWhatItCanExpress) {
  std::vector<double> x, square;
  for (int i = 0; i <= 16; ++i) x.push_back(i / 16.0);
  for (const double v : x) square.push_back(v * v);
  const ppoly line = pp_iba(x, x);
  EXPECT_EQ(line.knots, (std::vector<double>{0, 0.2, 2 / 5.0, 3 / 5.0, 0.8, 1})) << "5 pieces unless told otherwise";
  EXPECT_EQ(pp_iba(x, x, -1), line) << "so does a negative number of them";
  for (const double at : x) EXPECT_NEAR(ppval(line, at), at, 1e-6);
  // sqrt(2 x), the root of the slope, is no spline at 0: near, not equal
  const ppoly parabola = pp_iba(x, square, 8);
  for (const double at : x) EXPECT_NEAR(ppval(parabola, at), at * at, 2e-3);
}

}  // namespace
}  // namespace corvantile
