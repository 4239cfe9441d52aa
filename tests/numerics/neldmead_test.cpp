#include "numerics/neldmead.hpp"

#include <bit>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>

#include "numerics/conic_intersect.hpp"
#include "numerics/nonlinfit.hpp"

namespace corvantile {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

double rosenbrock(std::span<const double> x) { return 100 * std::pow(x[1] - x[0] * x[0], 2) + std::pow(1 - x[0], 2); }

TEST(NelderMead, FindsKnownMinima) {
  const auto r = neldermead(rosenbrock, std::array{-1.2, 1.0}, {.tol = 1e-16});
  EXPECT_TRUE(r.converged);
  EXPECT_NEAR(r.xmin[0], 1, 1e-6);
  EXPECT_NEAR(r.xmin[1], 1, 1e-6);

  // Powell's singular function, minimum 0 at the origin, through the run-time sized search
  const auto powell = [](std::span<const double> x) {
    return std::pow(x[0] + 10 * x[1], 2) + 5 * std::pow(x[2] - x[3], 2) + std::pow(x[1] - 2 * x[2], 4) +
           10 * std::pow(x[0] - x[3], 4);
  };
  const auto p = neldermead(powell, std::span<const double>(std::array{3.0, -1.0, 0.0, 1.0}), {.tol = 1e-20});
  for (const double x : p.xmin) EXPECT_NEAR(x, 0, 1e-3);
}

TEST(NelderMead, StopsAtATieAwayFromTheMinimum) {
  // By its own steps the search ends where three values tie, after 3 iterations: no fault to be repaired.
  const auto r =
      neldermead([](std::span<const double> x) { return (x[0] - 1) * (x[0] - 1) + (x[1] - 2) * (x[1] - 2); },
                 std::array{0.0, 0.0});
  EXPECT_TRUE(r.converged);
  EXPECT_EQ(r.iters, 3);
  EXPECT_EQ(r.xmin, (std::array{0.5, 1.5}));
}

TEST(NelderMead, ReportsHowItEnded) {
  const auto constant = neldermead([](auto) { return 4.0; }, std::array{1.0, 2.0});
  EXPECT_TRUE(constant.converged);
  EXPECT_EQ(constant.iters, 0);

  const auto never = neldermead([](auto) { return nan; }, std::array{1.0}, {.maxit = 500});
  EXPECT_FALSE(never.converged);
  EXPECT_EQ(never.iters, 501);

  const auto enough = neldermead(rosenbrock, std::array{-1.2, 1.0}, {.enough = 1e-3});
  EXPECT_LT(enough.fmin, 1e-3);
  EXPECT_GT(enough.fmin, 1e-9) << "no further than asked for";
}

TEST(NelderMead, BothKindsOfDimensionGiveTheSameBits) {
  const auto fixed = neldermead(rosenbrock, std::array{-1.2, 1.0}, {.scale = 0.3, .tol = 1e-14});
  const auto sized =
      neldermead(rosenbrock, std::span<const double>(std::array{-1.2, 1.0}), {.scale = 0.3, .tol = 1e-14});
  EXPECT_EQ(fixed.xmin[0], sized.xmin[0]);
  EXPECT_EQ(fixed.xmin[1], sized.xmin[1]);
  EXPECT_EQ(fixed.iters, sized.iters);
  EXPECT_EQ(fixed.evals, sized.evals);
}

// The reference: exchange neighbours while the left one is greater, then turn the whole round.
std::vector<std::size_t> bubble_sorted(std::vector<double> v) {
  std::vector<std::size_t> perm(v.size());
  for (std::size_t i = 0; i < perm.size(); ++i) perm[i] = i;
  for (std::size_t pass = 1; pass < v.size(); ++pass) {
    for (std::size_t j = 0; j + 1 < v.size(); ++j) {
      if (v[j] > v[j + 1]) {
        std::swap(v[j], v[j + 1]);
        std::swap(perm[j], perm[j + 1]);
      }
    }
  }
  std::ranges::reverse(perm);
  return perm;
}

TEST(NelderMead, InsertionSortsAsNeighbourExchangeDoesTiesAndNotANumberIncluded) {
  std::mt19937 random(7);
  const std::array choices{0.0, 1.0, 2.0, 3.0, nan, std::numeric_limits<double>::infinity(), 1.5, -0.0};
  for (int trial = 0; trial < 20000; ++trial) {
    simplex<4> s(4);
    std::vector<double> descending(4);
    for (double& v : descending) v = choices[random() % choices.size()];
    std::ranges::sort(descending, [](double a, double b) { return a > b; });
    std::vector<double> v{choices[random() % choices.size()]};
    v.insert(v.end(), descending.begin(), descending.end());
    for (std::size_t i = 0; i < 5; ++i) {
      s.values()[i] = v[i];
      s.row(i)[0] = static_cast<double>(i);
    }
    reinsert_worst(s);
    const auto want = bubble_sorted(v);
    for (std::size_t i = 0; i < 5; ++i) {
      ASSERT_EQ(s.row(i)[0], static_cast<double>(want[i])) << ::testing::PrintToString(v);
    }
  }
}

TEST(NelderMead, LeavingOutRepeatedIterationsChangesNothing) {
  // Costs whose values never agree to the tolerance: rounding noise stops the simplex at neighbouring doubles.
  const auto noisy = [](double big, std::span<const double> x) {
    double sum = 0;
    for (const double v : x) sum += std::pow(std::sin(v + 0.3) * big - 0.1 * big, 2);
    return sum;
  };
  int stalls = 0;
  for (int i = 0; i < 60; ++i) {
    const double big = 3000.0 + 137.0 * i;
    const auto cost = [&](std::span<const double> x) {
      return i % 7 == 6 && x[0] > 0.4 ? nan : noisy(big, x) + 1e-3 * i;
    };
    nm_settings set{.scale = 0.05, .tol = 1e-18 * (1 + i % 3), .maxit = 3000 + i % 5};
    const std::array start{0.5, 0.1 * (i % 4), 0.2};
    const auto skipped = neldermead(cost, start, set);
    set.skip_cycles = false;
    const auto full = neldermead(cost, start, set);
    for (std::size_t k = 0; k < 3; ++k) {
      EXPECT_EQ(std::bit_cast<std::uint64_t>(skipped.xmin[k]), std::bit_cast<std::uint64_t>(full.xmin[k]));
    }
    EXPECT_EQ(std::bit_cast<std::uint64_t>(skipped.fmin), std::bit_cast<std::uint64_t>(full.fmin));
    EXPECT_EQ(skipped.iters, full.iters);
    EXPECT_EQ(skipped.converged, full.converged);
    EXPECT_LE(skipped.evals, full.evals);
    if (skipped.evals < full.evals / 2) ++stalls;
  }
  EXPECT_GE(stalls, 5) << "or the test shows nothing";
}

TEST(Conics, MeetInTheUnitSquare) {
  const conic u_quarter{0, 0, 0, 1, 0, -0.25};
  const conic v_064{0, 0, 0, 0, 1, -0.64};
  const struct {
    conic q1, q2;
    vec2 start, want;
    double tol;
    const char* why;
  } rows[] = {
      {u_quarter, v_064, {{0.5, 0.5}}, {{0.25, 0.64}}, 1e-6, "two lines"},
      {u_quarter, v_064, {{2, -1}}, {{0.25, 0.64}}, 1e-6, "starts outside begin at the bounds"},
      {u_quarter, v_064, {{nan, nan}}, {{0.25, 0.64}}, 1e-6, "so do starts that are no number"},
      {{1, 0, 1, 0, 0, -0.5}, {0, 0, 0, 1, -1, 0}, {{0.9, 0.1}}, {{0.5, 0.5}}, 1e-6, "circle and diagonal"},
      {{0, 0, 0, 1, 0, -2}, v_064, {{0.5, 0.5}}, {{1, 0.64}}, 1e-5, "no meeting point: the nearest miss"},
  };
  for (const auto& r : rows) {
    SCOPED_TRACE(r.why);
    const vec2 mu = cmus(r.q1, r.q2, r.start);
    EXPECT_NEAR(mu[0], r.want[0], r.tol);
    EXPECT_NEAR(mu[1], r.want[1], r.tol);
  }
}

TEST(RampFit, CostVanishesOnItsOwnCurves) {
  const std::array x{0.0, 0.25, 0.5, 1.0};
  const std::array square{0.0, 0.0625, 0.25, 1.0};
  EXPECT_EQ((nlerr{x, square}(std::array{1.0})), 0.0);
  EXPECT_EQ((nlerr{x, x}(std::array{0.0})), 0.0);
  EXPECT_EQ((nlerr{x, square}(std::array{0.0})), 0.1875 * 0.1875 + 0.25 * 0.25);
  EXPECT_EQ((nlerr{}(std::array{0.7})), 0.0) << "no samples";
}

}  // namespace
}  // namespace corvantile
