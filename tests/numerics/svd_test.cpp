#include "corvantile/numerics/svd.hpp"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

#include "corvantile/numerics/nm_utils.hpp"

namespace corvantile {

using vec = std::vector<double>;
constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

static matrix of(std::size_t rows, std::size_t cols, const vec& row_by_row) {
  matrix m(rows, cols);
  for (std::size_t k = 0; k < row_by_row.size(); ++k) m(k / cols, k % cols) = row_by_row[k];
  return m;
}

static matrix transposed(const matrix& a) { return of(a.cols(), a.rows(), {a.data().begin(), a.data().end()}); }

static matrix times(const matrix& a, const matrix& b) {
  matrix p(a.rows(), b.cols());
  for (std::size_t i = 0; i < a.rows(); ++i)
    for (std::size_t j = 0; j < b.cols(); ++j)
      for (std::size_t k = 0; k < a.cols(); ++k) p(i, j) += a(i, k) * b(k, j);
  return p;
}

static void expect_near(const matrix& got, const matrix& want, double tol, const char* what) {
  ASSERT_EQ(std::pair(got.rows(), got.cols()), std::pair(want.rows(), want.cols())) << what;
  for (std::size_t k = 0; k < got.data().size(); ++k) EXPECT_NEAR(got.data()[k], want.data()[k], tol) << what << k;
}

/// The example of Golub and Reinsch (1970), of rank 3.
const matrix golub_reinsch = of(8, 5, {22, 10, 2, 3,  7, 14, 7, 10, 0, 8,  -1, 13, -1, -11, 3, -3, -2, 13, -2, 4,
                                       9,  8,  1, -2, 4, 9,  1, -7, 5, -1, 2,  -6, 6,  5,   1, 4,  5,  0,  -2, 2});

TEST(Svd, FactorsAreOrthonormalAndMultiplyBack) {
  // With published or closed-form singular values, largest first.
  const std::tuple<const char*, matrix, vec> rows[] = {
      {"Golub and Reinsch's own", golub_reinsch, {std::sqrt(1248.), 20, std::sqrt(384.), 0, 0}},
      {"sqrt(15 +- sqrt(221))", of(2, 2, {1, 2, 3, 4}), {5.4649857042190427, 0.36596619062625782}},
      {"wide: through the transpose", of(2, 3, {3, 0, 0, 0, 0, -2}), {3, 2}},
      {"cancellation", of(3, 3, {1, 1, 0, 0, 0, 1, 0, 0, 2}), {std::sqrt(5.), std::sqrt(2.), 0}},
      {"squares would overflow", of(2, 2, {3e200, 0, 4e200, 0}), {5e200, 0}}};
  for (const auto& [why, a, want] : rows) {
    const auto [u, s, v] = svd(a);
    vec values;
    for (std::size_t i = 0; i < s.rows(); ++i) values.push_back(s(i, i));
    std::ranges::sort(values, std::greater<>());
    const double tol = 2e-15 * std::max(1.0, values[0]);
    expect_near(of(want.size(), 1, values), of(want.size(), 1, want), tol, why);
    expect_near(times(transposed(u), u), eye(s.rows()), 2e-15, why);
    expect_near(times(transposed(v), v), eye(s.rows()), 2e-15, why);
    expect_near(times(times(u, s), transposed(v)), a, tol, why);
  }
}

TEST(Svd, PseudoInverse) {
  const matrix p = pinv(golub_reinsch, 1e-12);
  expect_near(times(times(golub_reinsch, p), golub_reinsch), golub_reinsch, 5e-14, "A P A = A ");
  expect_near(transposed(times(p, golub_reinsch)), times(p, golub_reinsch), 5e-16, "P A is symmetric ");
  expect_near(pinv(of(2, 2, {4, 0, 0, 0.5}), 0.5), of(2, 2, {0.25, 0, 0, 2}), 0, "a value equal to tol is kept ");
  expect_near(pinv(of(3, 3, {1, 0, 0, 0, 1e-15, 0, 0, 0, 1e-17})), of(3, 3, {1, 0, 0, 0, 1e15, 0, 0, 0, 0}), 1,
              "the default is 2^-52 of the largest element ");
}

TEST(Svd, EndsAndIsSafeForExtremeValues) {
  for (const double bad : {nan, inf, -inf}) pinv(of(2, 3, {1, 2, 3, 4, bad, 6}));  // must return
  for (const double scale : {1., 1e300, 1e-320}) EXPECT_NEAR(pythag(3 * scale, -4 * scale), 5 * scale, 2e-15 * scale);
  EXPECT_EQ((vec{pythag(0, 0), pythag(inf, inf), pythag(1, -inf)}), (vec{0, inf, inf}));
  EXPECT_TRUE(std::isnan(pythag(nan, 1)));
}

}  // namespace corvantile
