#include "corvantile/numerics/polynomials.hpp"

#include <gtest/gtest.h>
#include <limits>

namespace corvantile {

using coefs = std::vector<double>;

TEST(Polynomial, OperationsGiveTheExactCoefficients) {
  const polynomial a = makepoly({1, 2, 3}), b = makepoly({4, 5}), one = makepoly({1, 1, 1});
  EXPECT_EQ((a * b).coef, (coefs{4, 13, 22, 15}));
  EXPECT_EQ((2.0 + a + b - 2.0).coef, (coefs{5, 7, 3}));
  EXPECT_EQ((b - 2.0 * a).coef, (coefs{2, 1, -6}));
  EXPECT_EQ((2.0 - a).coef, (coefs{1, -2, -3})) << "negates every term";
  EXPECT_EQ((a + makepoly({0, 0, -3})).coef, (coefs{1, 2, 0})) << "a cancelled leading term stays";
  EXPECT_EQ(polyint(a, 4.0).coef, (coefs{4, 1, 1, 1}));
  EXPECT_EQ(polyder(makepoly({7})).coef, coefs{0}) << "zero, not empty";
  EXPECT_EQ(poly_arg_shift(makepoly({0, 0, 1}), 1.0).coef, (coefs{1, -2, 1})) << "(x - 1)^2";
  EXPECT_EQ(poly_arg_scale(one, 2.0).coef, (coefs{1, 2, 4}));
  EXPECT_EQ(poly_compose(one, makepoly({1, 0, 2})).coef, (coefs{3, 0, 6, 0, 4})) << "1 + q + q^2, q = 1 + 2 x^2";
  EXPECT_EQ(poly_to_power(makepoly({1, 1}), 4).coef, (coefs{1, 4, 6, 4, 1}));
  EXPECT_EQ(poly_to_power(a, -3).coef, coefs{1}) << "the constant 1 for negative powers";
  EXPECT_EQ(poly_arg_power(3).coef, (coefs{0, 0, 0, 1}));
  EXPECT_EQ(poly_trim(makepoly({1, 1e-20, 0})).coef, coefs{1}) << "below 2^-52 of the largest";
  EXPECT_EQ(poly_trim(makepoly({1, 1e-20, 0}), 0.0).coef, (coefs{1, 1e-20}));
  EXPECT_EQ(poly_trim(makepoly({2, 2}), 2.0).coef, coefs{0})
      << "coefficients equal to the tolerance go; zero remains";
  EXPECT_EQ(polyval(makepoly({5}), std::numeric_limits<double>::quiet_NaN()), 5) << "a constant ignores x";
  EXPECT_EQ(polydefint(a, 1, 0), -3) << "signed";
}

TEST(Polynomial, FitsInTheLeastSquaresSense) {
  const coefs x{0, 1, 2, 3}, y{1, 3, 2, 5};
  EXPECT_NEAR(polyval(polyfit(x, y, 1), 10), 1.1 + 11, 1e-13) << "line by hand from the normal equations";
  for (const int n : {3, 5})  // as many points as coefficients, and fewer
    for (std::size_t i = 0; i < 4; ++i) EXPECT_NEAR(polyval(polyfit(x, y, n), x[i]), y[i], 1e-12) << n;
  EXPECT_EQ(poly_degree(polyfit(x, x, 3)), 3) << "never trimmed";
}

}  // namespace corvantile
