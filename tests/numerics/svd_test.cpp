#include "numerics/svd.hpp"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace corvantile {
namespace {

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

matrix of(std::size_t rows, std::size_t cols, std::initializer_list<double> row_by_row) {
  matrix m(rows, cols);
  auto v = row_by_row.begin();
  for (std::size_t i = 0; i < rows; ++i)
    for (std::size_t j = 0; j < cols; ++j) m(i, j) = *v++;
  return m;
}

matrix times(const matrix& a, const matrix& b) {
  matrix p(a.rows(), b.cols());
  for (std::size_t i = 0; i < a.rows(); ++i)
    for (std::size_t j = 0; j < b.cols(); ++j)
      for (std::size_t k = 0; k < a.cols(); ++k) p(i, j) += a(i, k) * b(k, j);
  return p;
}

matrix transposed(const matrix& a) {
  matrix t(a.cols(), a.rows());
  for (std::size_t i = 0; i < a.rows(); ++i)
    for (std::size_t j = 0; j < a.cols(); ++j) t(j, i) = a(i, j);
  return t;
}

void expect_near(const matrix& got, const matrix& want, double tol, const char* what) {
  ASSERT_EQ(got.rows(), want.rows()) << what;
  ASSERT_EQ(got.cols(), want.cols()) << what;
  for (std::size_t k = 0; k < got.data().size(); ++k) EXPECT_NEAR(got.data()[k], want.data()[k], tol) << what << k;
}

matrix identity(std::size_t n) {
  matrix m(n, n);
  for (std::size_t i = 0; i < n; ++i) m(i, i) = 1;
  return m;
}

/// The example of Golub and Reinsch (1970), of rank 3.
matrix golub_reinsch() {
  return of(8, 5, {22, 10, 2, 3,  7, 14, 7, 10, 0, 8,  -1, 13, -1, -11, 3, -3, -2, 13, -2, 4,
                   9,  8,  1, -2, 4, 9,  1, -7, 5, -1, 2,  -6, 6,  5,   1, 4,  5,  0,  -2, 2});
}

TEST(Svd, FactorsAreOrthonormalAndMultiplyBack) {
  const struct {
    matrix a;
    std::vector<double> sorted;  // published or closed-form singular values, largest first
    const char* why;
  } rows[] = {
      {golub_reinsch(), {std::sqrt(1248.), 20, std::sqrt(384.), 0, 0}, "Golub and Reinsch's own, rank 3"},
      {of(2, 2, {1, 2, 3, 4}), {5.4649857042190427, 0.36596619062625782}, "sqrt(15 +- sqrt(221))"},
      {of(2, 3, {3, 0, 0, 0, 0, -2}), {3, 2}, "wide: through the transpose, U 2 x 2 and V 3 x 2"},
      {of(3, 1, {2, -3, 6}), {7}, "one column"},
      {of(2, 2, {0, 0, 0, 0}), {0, 0}, "zero"},
      {of(3, 3, {1, 1, 0, 0, 0, 1, 0, 0, 2}),
       {std::sqrt(5.), std::sqrt(2.), 0},
       "zero in the diagonal: cancellation"},
      {of(2, 2, {3e200, 0, 4e200, 0}), {5e200, 0}, "squares would overflow"},
  };
  for (const auto& r : rows) {
    SCOPED_TRACE(r.why);
    const auto [u, s, v] = svd(r.a);
    const std::size_t k = std::min(r.a.rows(), r.a.cols());
    std::vector<double> values;
    for (std::size_t i = 0; i < k; ++i) values.push_back(s(i, i));
    std::ranges::sort(values, std::greater<>());
    const double tol = 2e-15 * std::max(1.0, values[0]);
    for (std::size_t i = 0; i < k; ++i) EXPECT_NEAR(values[i], r.sorted[i], tol) << i;
    expect_near(times(transposed(u), u), identity(k), 2e-15, "U^T U ");
    expect_near(times(transposed(v), v), identity(k), 2e-15, "V^T V ");
    expect_near(times(times(u, s), transposed(v)), r.a, tol, "U S V^T ");
  }
}

TEST(Svd, PseudoInverse) {
  const matrix tall = of(3, 2, {1, 2, 3, 4, 5, 6});
  // (A^T A)^-1 A^T with A^T A = [35 44; 44 56], determinant 24.
  expect_near(pinv(tall), of(2, 3, {-32 / 24., -8 / 24., 16 / 24., 26 / 24., 8 / 24., -10 / 24.}), 2e-15, "tall ");
  expect_near(pinv(transposed(tall)), transposed(pinv(tall)), 2e-15, "wide: the other factor is scaled ");

  const matrix a = golub_reinsch();
  const matrix p = pinv(a, 1e-12);
  expect_near(times(times(a, p), a), a, 5e-14, "A P A = A ");
  expect_near(times(times(p, a), p), p, 5e-16, "P A P = P ");

  const matrix diag = of(2, 2, {4, 0, 0, 0.5});
  expect_near(pinv(diag, 0.5), of(2, 2, {0.25, 0, 0, 2}), 0, "a value equal to tol counts ");
  expect_near(pinv(diag, 0.51), of(2, 2, {0.25, 0, 0, 0}), 0, "one below it does not ");
  EXPECT_FALSE(std::isfinite(pinv(matrix(2, 2))(0, 0))) << "zero with its default tolerance of 0";
}

TEST(Svd, EndsForNonFiniteMatrices) {
  for (const double bad : {nan, inf, -inf}) {
    for (std::size_t at = 0; at < 6; ++at) {
      matrix a = of(3, 2, {1, 2, 3, 4, 5, 6});
      a.data()[at] = bad;
      svd(a);
      pinv(transposed(a));
    }
  }
}

TEST(Pythag, IsSafeAtBothEndsAndForNonFiniteValues) {
  const struct {
    double a, b, want;
  } rows[] = {{3, -4, 5},   {0, 0, 0},     {-7, 0, 7},     {3e300, 4e300, 5e300}, {3e-320, 4e-320, 5e-320},
              {1, 1e-9, 1}, {inf, 1, inf}, {1, -inf, inf}, {inf, inf, inf}};
  for (const auto& r : rows) {
    SCOPED_TRACE(r.a);
    if (std::isinf(r.want)) {
      EXPECT_EQ(pythag(r.a, r.b), r.want);
    } else {
      EXPECT_NEAR(pythag(r.a, r.b), r.want, 4e-16 * r.want);
    }
  }
  EXPECT_TRUE(std::isnan(pythag(nan, 1)));
  EXPECT_TRUE(std::isnan(pythag(1, nan)));
}

}  // namespace
}  // namespace corvantile
