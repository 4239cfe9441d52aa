#include "corvantile/numerics/neldmead.hpp"

#include <bit>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <tuple>

#include "corvantile/numerics/conic_intersect.hpp"

namespace corvantile {

using point = std::span<const double>;
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

static double rosenbrock(point x) { return 100 * std::pow(x[1] - x[0] * x[0], 2) + std::pow(1 - x[0], 2); }

TEST(NelderMead, FindsAKnownMinimumInBothKindsOfDimension) {
  const auto fixed = neldermead(rosenbrock, std::array{-1.2, 1.0}, {.tol = 1e-16});
  const auto sized = neldermead(rosenbrock, point(std::array{-1.2, 1.0}), {.tol = 1e-16});
  EXPECT_TRUE(fixed.converged);
  EXPECT_NEAR(std::abs(fixed.xmin[0] - 1) + std::abs(fixed.xmin[1] - 1), 0, 1e-6);
  EXPECT_TRUE(std::ranges::equal(fixed.xmin, sized.xmin));
  EXPECT_EQ(std::pair(fixed.iters, fixed.evals), std::pair(sized.iters, sized.evals));
  EXPECT_GT(neldermead(rosenbrock, std::array{-1.2, 1.0}, {.tol = 1e-16, .enough = 1e-3}).fmin, 1e-9);
  const auto hopeless = [](auto) { return nan; };
  EXPECT_EQ(neldermead(hopeless, std::array{1.0}, {.maxit = 500}).iters, 501) << "not converged";
  EXPECT_EQ(neldermead(hopeless, std::array{1.0}, {.maxit = 2147483647}).iters, 2147483648) << "no overflow";
  EXPECT_TRUE(closeenough(std::array{0.7e-8, 0.0}, 1.5e-8)) << "absolute near 0";
}

TEST(NelderMead, TakesEachStepByItsRule) {
  // Vertices (0, 0), (1, 0), (0, 1) of cost 3, 2, 1; all steps lie at (at, at).
  // Columns: cost there at 1, 1.5, 0.75 and 0.25; best cost and evaluations after one iteration.
  const std::tuple<std::array<double, 4>, double, int, const char*> rows[] = {
      {{0, 0.5, 9, 9}, 0.5, 5, "the expansion is compared with the old best, not the reflection"},
      {{0, 1, 9, 9}, 0, 5, "expansion no better than the old best: reflection"},
      {{1, 0, 9, 9}, 1, 4, "as good as the best: reflection, no expansion"},
      {{2.5, 9, 0, 9}, 0, 5, "contraction outside"},
      {{3, 9, 9, 0}, 0, 5, "contraction inside"},
      {{nan, 9, 9, 9}, 1, 8, "shrink"}};
  for (const auto& [at, best, evals, why] : rows) {
    const auto cost = [&at = at](point x) {
      if (x[0] != x[1]) return 2 - x[1];
      return x[0] == 0 ? 3 : x[0] == 1 ? at[0] : x[0] == 1.5 ? at[1] : x[0] == 0.75 ? at[2] : at[3];
    };
    const auto r = neldermead(cost, std::array{0.0, 0.0}, {.maxit = 1});
    EXPECT_EQ(std::pair(r.fmin, static_cast<int>(r.evals)), std::pair(best, evals)) << why;
  }
}

TEST(NelderMead, InsertionSortsAsNeighbourExchangeDoesTiesAndNotANumberIncluded) {
  std::mt19937 random(7);
  const std::array choices{0.0, 1.0, 2.0, 3.0, nan, std::numeric_limits<double>::infinity(), 1.5, -0.0};
  for (int trial = 0; trial < 40000; ++trial) {
    std::array<std::pair<double, double>, 5> v;  // value, original position
    simplex<4> s(4);
    for (std::size_t i = 0; i < 5; ++i) {
      v[i] = {choices[random() % 8], i};
      s.values()[i] = v[i].first;
      s.row(i)[0] = v[i].second;
    }
    const std::array<double, 4> x{0.0};
    replace_worst<4>(s, x, s.values()[0]);
    for (int pass = 0; pass < 4; ++pass)
      for (std::size_t j = 0; j < 4; ++j)
        if (v[j].first > v[j + 1].first) std::swap(v[j], v[j + 1]);
    for (std::size_t i = 0; i < 5; ++i) ASSERT_EQ(s.row(i)[0], v[4 - i].second) << testing::PrintToString(v);
  }
}

TEST(NelderMead, LeavingOutRepeatedIterationsChangesNothing) {
  // Costs whose values never agree to the tolerance: rounding noise stops the simplex between neighbouring doubles.
  int stalls = 0;
  for (int i = 0; i < 60; ++i) {
    const auto cost = [i](point x) {
      double sum = 1e-3 * i;
      for (const double v : x) sum += std::pow((3000 + 137 * i) * (std::sin(v + 0.3) - 0.1), 2);
      return i % 7 == 6 && x[0] > 0.4 ? nan : sum;
    };
    nm_settings set{.scale = 0.05, .tol = 1e-18 * (1 + i % 3), .maxit = 3000 + i % 5};
    const auto skipped = neldermead(cost, std::array{0.5, 0.1 * (i % 4), 0.2}, set);
    set.skip_cycles = false;
    const auto full = neldermead(cost, std::array{0.5, 0.1 * (i % 4), 0.2}, set);
    const auto outcome = [](const auto& r) {
      return std::tuple(r.xmin, std::bit_cast<std::uint64_t>(r.fmin), r.iters, r.converged);
    };
    EXPECT_EQ(outcome(skipped), outcome(full)) << i;
    if (skipped.evals < full.evals / 2) ++stalls;
  }
  EXPECT_GE(stalls, 5) << "otherwise the test shows nothing";
}

// A sum of three squares. With a limit, it stops adding once the sum reaches the limit, and returns the limit.
struct squares {
  double k;
  int* early;
  double operator()(point x) const { return (*this)(x, nan); }
  double operator()(point x, double limit) const {
    double sum = 0;
    for (std::size_t i = 0; i < 3; ++i) {
      const double along = x[i] + k * x[(i + 1) % 3] * x[(i + 1) % 3] - 0.3;
      sum += x[0] > 0.9 ? nan : along * along;
      if (sum >= limit) return ++*early, limit;
    }
    return sum;
  }
};

TEST(NelderMead, CostsThatKnowOfLimitsLeadToTheSameEnd) {
  int early = 0;
  for (int i = 0; i < 60; ++i) {
    const squares cost{0.05 * i, &early};
    const std::array start{0.02 * i, 0.1 * (i % 4), 0.2};
    const nm_settings set{.scale = 0.5, .tol = 1e-14, .maxit = 400};
    const auto limited = neldermead(cost, start, set);
    const auto whole = neldermead([&cost](point x) { return cost(x); }, start, set);
    const auto outcome = [](const auto& r) {
      return std::tuple(r.xmin, std::bit_cast<std::uint64_t>(r.fmin), r.iters, r.evals);
    };
    EXPECT_EQ(outcome(limited), outcome(whole)) << i;
  }
  EXPECT_GE(early, 1000) << "otherwise the test shows nothing";
}

TEST(Conics, MeetInTheUnitSquare) {
  const conic u_pair{1, 0, 0, -1, 0, 0.16}, v_pair{0, 0, 1, 0, -1, 0.16};  // zero at 0.2 and 0.8 each
  const std::tuple<conic, conic, vec2, vec2, const char*> rows[] = {
      {u_pair, v_pair, {{2, -1}}, {{0.8, 0.2}}, "starting values outside begin at the bounds"},
      {u_pair, v_pair, {{nan, 2}}, {{0.2, 0.8}}, "NaN begins at 0"},
      {{0, 1, 0, 0, 0, -0.16}, {0, 0, 0, 1, 1, -1}, {{0.9, 0.1}}, {{0.8, 0.2}}, "hyperbola and line"},
      {{0, 0, 0, 1, 0, -2}, v_pair, {{0.5, 0.3}}, {{1, 0.2}}, "no meeting point: the nearest miss"}};
  for (const auto& [q1, q2, start, want, why] : rows) {
    const vec2 mu = cmus(q1, q2, start) - want;
    EXPECT_NEAR(std::abs(mu[0]) + std::abs(mu[1]), 0, 2e-5) << why;
  }
}

}  // namespace corvantile
