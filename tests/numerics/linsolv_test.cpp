#include "corvantile/numerics/linsolv.hpp"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace corvantile {

using vec = std::vector<double>;

static matrix square(const vec& columns) {
  const auto n = static_cast<std::size_t>(std::sqrt(columns.size()));
  matrix m(n, n);
  std::ranges::copy(columns, m.data().begin());
  return m;
}

static double norm(const matrix& m) {
  return std::max({sasum(3, m.col(0), 1), sasum(3, m.col(1), 1), sasum(3, m.col(2), 1)});
}

const matrix hilbert = square({1, 1. / 2, 1. / 3, 1. / 2, 1. / 3, 1. / 4, 1. / 3, 1. / 4, 1. / 5});
const matrix permutation = square({0, 1, 0, 0, 0, 1, 1, 0, 0});
const matrix singular = square({1, 3, 5, 0, 0, 0, 2, 4, 7});

TEST(Linsolv, InvertsOnTheStackWithTheBitsOfTheGeneralWay) {
  EXPECT_EQ(inv(permutation), square({0, 0, 1, 1, 0, 0, 0, 1, 0})) << "pivots at every step";
  const matrix want = square({9, -36, 30, -36, 192, -180, 30, -180, 180});
  for (std::size_t k = 0; k < 9; ++k) EXPECT_NEAR(inv(hilbert).data()[k], want.data()[k], 1e-12) << k;
  EXPECT_FALSE(std::ranges::all_of(inv(singular).data(), [](double v) { return std::isfinite(v); }));
  for (const matrix& m : {hilbert, permutation, square({0.1, 0.7, 0.3, 0.9, 0.2, -0.4, -0.3, 0.6, 0.8})}) {
    mat3 small;
    for (std::size_t j = 0; j < 3; ++j) std::ranges::copy(m.col(j), small.col[j].v.begin());
    EXPECT_EQ(to_matrix(inv(small)), inv(m));
  }
}

TEST(Linsolv, OneFactorisationSolvesBothWaysAndGivesDeterminantAndCondition) {
  const matrix a = square({1, 4, -2, 2, 0, 5, -1, 2, 3});
  matrix lu = a, broken = singular;
  std::array<std::size_t, 3> ipvt{};
  std::array<double, 2> det{};
  vec b{-6, 10, -3}, z{-6, 10, -3}, bt{-13, 17, 4};  // A x and transpose(A) x, x = (1, -2, 3)
  solve(a, z);
  sgefa(lu.data(), 3, 3, ipvt);
  sgesl(lu.data(), 3, 3, ipvt, b, 0);
  sgesl(lu.data(), 3, 3, ipvt, bt, 1);
  for (const vec& x : {b, bt, z}) EXPECT_NEAR(std::hypot(x[0] - 1, x[1] + 2, x[2] - 3), 0, 4e-15);
  sgedi(lu.data(), 3, 3, ipvt, det, z, 10);
  EXPECT_NEAR(det[0] * std::pow(10, det[1]), -62, 1e-13);
  EXPECT_EQ(det[1], 1);
  EXPECT_EQ(sgefa(broken.data(), 3, 3, ipvt), 2) << "the second pivot, counted from 1";
  std::mt19937 random(1);
  for (int trial = 0; trial < 200; ++trial) {
    matrix m(3, 3);
    for (double& v : m.data()) v = static_cast<double>(random() % 2001) / 1000 - 1;
    const double rcond = 1 / (norm(m) * norm(inv(m))), estimate = sgeco(m.data(), 3, 3, ipvt, z);
    EXPECT_GE(estimate, (1 - 1e-9) * rcond) << "a bound";
    EXPECT_LE(estimate, 2.5 * rcond) << "and a close one";
  }
  EXPECT_EQ(sgeco((broken = singular).data(), 3, 3, ipvt, z), 0);

  EXPECT_EQ(sdot(7, vec{1, 1e16, 1, -1e16, 1, 1, 1}, 1, vec(7, 1), 1), 3) << "one running sum, first term to last";
  EXPECT_EQ(isamax(6, vec{1, -3, 3, 2, 0, -3}, 1), 1u) << "the first of equals";
  vec y{11, 1};
  saxpy(1, 0.0, vec{std::nan("")}, 1, y, 1);  // zero times NaN is not added
  saxpy(2, 2.0, vec{1, 3}, 1, y, -1);
  EXPECT_EQ(y, (vec{17, 3})) << "a negative stride reads backwards";
}

}  // namespace corvantile
