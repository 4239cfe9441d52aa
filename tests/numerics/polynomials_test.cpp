#include "numerics/polynomials.hpp"

#include <gtest/gtest.h>
#include <limits>

namespace corvantile {
namespace {

using coefs = std::vector<double>;

TEST(Polynomial, OperationsGiveTheExactCoefficients) {
  const polynomial a = makepoly({1, 2, 3});
  const polynomial b = makepoly({4, 5});
  const struct {
    polynomial got;
    coefs want;
    const char* why;
  } rows[] = {
      {a * b, {4, 13, 22, 15}, "convolution, length 3 + 2 - 1"},
      {a + b, {5, 7, 3}, "longer length"},
      {b - a, {3, 3, -3}, "the shorter is subtracted from"},
      {a + makepoly({0, 0, -3}), {1, 2, 0}, "a cancelled leading term stays"},
      {2.0 * a, {2, 4, 6}, "scaled"},
      {2.0 - a, {1, -2, -3}, "real less polynomial negates every term"},
      {a - 2.0, {-1, 2, 3}, "polynomial less real touches the constant only"},
      {2.0 + a, {3, 2, 3}, "real added to the constant only"},
      {polyint(a, 4.0), {4, 1, 1, 1}, "antiderivative with its constant"},
      {polyder(polyint(makepoly({1, -2, 3, 8}), 9.0)), {1, -2, 3, 8}, "F' = f"},
      {polyder(makepoly({7})), {0}, "a constant's derivative is zero, not empty"},
      {polyder(makepoly({7, 1, 0})), {1, 0}, "zero coefficients count"},
      {poly_arg_shift(makepoly({0, 0, 1}), 1.0), {1, -2, 1}, "(x - 1)^2"},
      {poly_arg_scale(makepoly({1, 1, 1}), 2.0), {1, 2, 4}, "p(2 x)"},
      {poly_compose(makepoly({1, 1, 1}), makepoly({1, 0, 2})), {3, 0, 6, 0, 4}, "1 + q + q^2, q = 1 + 2 x^2"},
      {poly_to_power(makepoly({1, 1}), 4), {1, 4, 6, 4, 1}, "binomial coefficients"},
      {poly_to_power(a, 0), {1}, "constant 1"},
      {poly_to_power(a, -3), {1}, "constant 1 below zero"},
      {poly_arg_power(3), {0, 0, 0, 1}, "x^3"},
      {poly_arg_power(0), {1}, "x^0"},
  };
  for (const auto& r : rows) EXPECT_EQ(r.got.coef, r.want) << r.why;
}

TEST(Polynomial, OnlyTrimDropsLeadingCoefficients) {
  EXPECT_EQ(poly_degree({}), -1) << "never set";
  EXPECT_EQ(poly_degree(makepoly({5})), 0);
  const struct {
    coefs p;
    std::optional<double> tol;
    coefs want;
    const char* why;
  } rows[] = {
      {{1, 2, 0}, {}, {1, 2}, "zero leading term"},
      {{0, 0, 0}, {}, {0}, "zero keeps one coefficient"},
      {{1, 1e-20}, {}, {1}, "below 2^-52 of the largest"},
      {{1, 1e-20}, 0.0, {1, 1e-20}, "an explicit 0 keeps what is not zero"},
      {{1, 1e-20, 0}, 0.0, {1, 1e-20}, "but drops exact zeros"},
      {{4, 2, 2}, 2.0, {4}, "the tolerance itself is dropped"},
  };
  for (const auto& r : rows) EXPECT_EQ(poly_trim(makepoly(r.p), r.tol).coef, r.want) << r.why;
}

TEST(Polynomial, FitsInTheLeastSquaresSense) {
  const struct {
    std::vector<double> x, y;
    int n;
    coefs want;
    const char* why;
  } rows[] = {
      {{0, 1, 2}, {1, 2, 5}, 2, {1, 0, 1}, "as many points as coefficients: 1 + x^2"},
      {{0, 1, 2, 3}, {1, 3, 2, 5}, 1, {1.1, 1.1}, "line through scattered points, normal equations by hand"},
      {{-1, 0, 1, 2, 3}, {-1, 0, 1, 8, 27}, 5, {}, "fewer points than coefficients: meets every point"},
      {{2, 2, 2}, {1, 2, 3}, 0, {2}, "a constant is the mean"},
  };
  for (const auto& r : rows) {
    SCOPED_TRACE(r.why);
    const polynomial p = polyfit(r.x, r.y, r.n);
    EXPECT_EQ(poly_degree(p), r.n) << "never trimmed";
    for (std::size_t k = 0; k < r.want.size(); ++k) EXPECT_NEAR(p.coef[k], r.want[k], 2e-14) << k;
    if (r.want.empty()) {
      for (std::size_t i = 0; i < r.x.size(); ++i) EXPECT_NEAR(polyval(p, r.x[i]), r.y[i], 1e-12) << i;
    }
  }
}

TEST(Polynomial, ValuesAndIntegrals) {
  EXPECT_EQ(polyval(makepoly({5}), std::numeric_limits<double>::quiet_NaN()), 5) << "a constant ignores x";
  EXPECT_EQ(polyval(makepoly({1, 2, 3}), -2), 9);
  EXPECT_EQ(polydefint(makepoly({1, 2, 3}), 0, 1), 3);
  EXPECT_EQ(polydefint(makepoly({1, 2, 3}), 1, 0), -3) << "signed";
}

}  // namespace
}  // namespace corvantile
