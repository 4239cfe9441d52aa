#include "numerics/linsolv.hpp"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace corvantile {
namespace {

/// A matrix from its rows, as they read on paper.
matrix from_rows(std::initializer_list<std::initializer_list<double>> rows) {
  matrix m(rows.size(), rows.begin()->size());
  std::size_t i = 0;
  for (const auto& row : rows) {
    std::size_t j = 0;
    for (const double v : row) m(i, j++) = v;
    ++i;
  }
  return m;
}

matrix hilbert(std::size_t n) {
  matrix h(n, n);
  for (std::size_t i = 0; i < n; ++i)
    for (std::size_t j = 0; j < n; ++j) h(i, j) = 1.0 / static_cast<double>(i + j + 1);
  return h;
}

// Columns are the sRGB primaries, IEC 61966-2-1; the inverse is the one printed there.
const mat3 srgb{{vec3{{0.4124, 0.2126, 0.0193}}, vec3{{0.3576, 0.7152, 0.1192}}, vec3{{0.1805, 0.0722, 0.9505}}}};

TEST(Linsolv, InverseOfKnownMatrices) {
  const struct {
    matrix a, want;
    double tol;
    const char* why;
  } rows[] = {
      {from_rows({{0, 0, 1}, {1, 0, 0}, {0, 1, 0}}), from_rows({{0, 1, 0}, {0, 0, 1}, {1, 0, 0}}), 0,
       "a permutation pivots at every step"},
      {from_rows({{4}}), from_rows({{0.25}}), 0, "one by one"},
      {hilbert(3), from_rows({{9, -36, 30}, {-36, 192, -180}, {30, -180, 180}}), 1e-12, "Hilbert matrix"},
      {hilbert(4),
       from_rows(
           {{16, -120, 240, -140}, {-120, 1200, -2700, 1680}, {240, -2700, 6480, -4200}, {-140, 1680, -4200, 2800}}),
       2e-9, "Hilbert matrix, condition 3e4"},
  };
  for (const auto& r : rows) {
    SCOPED_TRACE(r.why);
    const matrix got = inv(r.a);
    ASSERT_EQ(got.rows(), r.want.rows());
    for (std::size_t k = 0; k < got.data().size(); ++k) EXPECT_NEAR(got.data()[k], r.want.data()[k], r.tol) << k;
  }
}

TEST(Linsolv, TheSmallInverseHasTheBitsOfTheGeneralOne) {
  const mat3 swaps{{vec3{{0.1, 0.7, 0.3}}, vec3{{0.9, 0.2, -0.4}}, vec3{{-0.3, 0.6, 0.8}}}};
  const mat3 singular{{vec3{{1, 2, 3}}, vec3{{2, 4, 6}}, vec3{{1, 0, 1}}}};
  for (const mat3& m : {srgb, swaps, singular}) {
    matrix a(3, 3);
    for (std::size_t j = 0; j < 3; ++j) std::ranges::copy(m.col[j].v, a.col(j).begin());
    const matrix want = inv(a);
    const mat3 got = inv(m);
    for (std::size_t j = 0; j < 3; ++j)
      for (std::size_t i = 0; i < 3; ++i)
        EXPECT_TRUE(got(i, j) == want(i, j) || (std::isnan(got(i, j)) && std::isnan(want(i, j)))) << i << j;
  }
  EXPECT_NEAR(inv(srgb)(0, 0), 3.2406, 5e-5);
  EXPECT_NEAR(inv(srgb)(2, 1), -0.2040, 5e-5);
}

TEST(Linsolv, SingularMatricesGiveNonFiniteValuesQuietly) {
  const matrix zero_column = from_rows({{1, 0, 2}, {3, 0, 4}, {5, 0, 7}});
  EXPECT_TRUE(std::ranges::any_of(inv(zero_column).data(), [](double v) { return !std::isfinite(v); }));

  matrix a = zero_column;
  std::array<std::size_t, 3> ipvt{};
  EXPECT_EQ(sgefa(a.data(), 3, 3, ipvt), 2) << "the second pivot, counted from 1";
  std::vector<double> b{1, 2, 3};
  solve(zero_column, b);
  EXPECT_TRUE(std::ranges::any_of(b, [](double v) { return !std::isfinite(v); }));
}

TEST(Linsolv, OneFactorisationSolvesBothWaysAndGivesTheDeterminant) {
  const matrix a = from_rows({{1, 2, -1, 3}, {4, 0, 2, 1}, {-2, 5, 3, 0}, {2, 1, 1, -6}});
  const std::vector<double> x{1, -2, 3, 0.5};
  matrix lu(6, 4);  // a leading dimension larger than the order
  for (std::size_t j = 0; j < 4; ++j) std::ranges::copy(a.col(j), lu.col(j).begin());
  std::array<std::size_t, 4> ipvt{};
  ASSERT_EQ(sgefa(lu.data(), 6, 4, ipvt), 0);

  for (const int job : {0, 1}) {
    std::vector<double> b(4);
    for (std::size_t i = 0; i < 4; ++i)
      for (std::size_t j = 0; j < 4; ++j) b[i] += (job == 0 ? a(i, j) : a(j, i)) * x[j];
    sgesl(lu.data(), 6, 4, ipvt, b, job);
    for (std::size_t i = 0; i < 4; ++i) EXPECT_NEAR(b[i], x[i], 4e-15) << "job " << job;
  }

  std::array<double, 2> det{};
  std::array<double, 4> work{};
  matrix only_det = lu, both = lu;
  sgedi(only_det.data(), 6, 4, ipvt, det, work, 10);
  EXPECT_EQ(only_det, lu) << "job 10 leaves the factors";
  EXPECT_NEAR(det[0] * std::pow(10.0, det[1]), 450, 1e-12);
  EXPECT_TRUE(std::abs(det[0]) >= 1 && std::abs(det[0]) < 10);
  sgedi(both.data(), 6, 4, ipvt, det, work, 11);
  for (std::size_t j = 0; j < 4; ++j)
    for (std::size_t i = 0; i < 4; ++i) EXPECT_EQ(both(i, j), inv(a)(i, j));

  for (const double pivot : {0.0, std::numeric_limits<double>::infinity(), std::nan("")}) {
    lu(0, 0) = pivot;
    sgedi(lu.data(), 6, 4, ipvt, det, work, 10);  // must return
  }
}

TEST(Linsolv, TheConditionEstimateTellsHealthyFromSingular) {
  const struct {
    matrix a;
    double low, high;
    const char* why;
  } rows[] = {
      {from_rows({{1, 0}, {0, 1}}), 1, 1, "identity"},
      {from_rows({{1, 0}, {0, 1e-10}}), 1e-10, 1.0000001e-10, "diagonal"},
      {hilbert(4), 1 / 28375.0, 3 / 28375.0, "exactly 1 / 28375, which the estimate may exceed a little"},
      {from_rows({{1, 2}, {2, 4}}), 0, 1e-16, "singular"},
      {from_rows({{0, 0}, {0, 0}}), 0, 0, "zero"},
  };
  for (auto r : rows) {
    std::vector<std::size_t> ipvt(r.a.rows());
    std::vector<double> z(r.a.rows());
    const double rcond = sgeco(r.a.data(), r.a.rows(), r.a.rows(), ipvt, z);
    EXPECT_GE(rcond, r.low * (1 - 1e-12)) << r.why;
    EXPECT_LE(rcond, r.high * (1 + 1e-12)) << r.why;
  }
}

TEST(Linsolv, KernelsKeepTheirOrder) {
  const std::vector<double> large{1, 1e16, 1, -1e16, 1, 1, 1};
  EXPECT_EQ(sdot(7, large, 1, std::vector<double>(7, 1.0), 1), 3) << "one running sum, first term to last";
  EXPECT_EQ(isamax(6, std::vector<double>{1, -3, 3, 2, 0, -3}, 1), 1u) << "the first of equals";
  std::vector<double> y{11, 1};
  saxpy(1, 0.0, std::vector<double>{std::nan("")}, 1, y, 1);
  EXPECT_EQ(y[0], 11) << "zero times NaN is not added";
  saxpy(2, 2.0, std::vector<double>{1, 3}, 1, y, -1);
  EXPECT_EQ(y, (std::vector<double>{17, 3})) << "a negative stride reads backwards";
}

}  // namespace
}  // namespace corvantile
