#include <cmath>
#include <gtest/gtest.h>

#include "colour/chromaticity.hpp"
#include "colour/nonpar_monitor.hpp"
#include "matching/matching.hpp"
#include "tests/monitor/fitted.hpp"

namespace corvantile {
namespace {

constexpr std::size_t rows = 16;

const monitor& mon() {
  static const monitor fit = fitted(uneven_display());
  return fit;
}
const lut curve = make_gamma_table(2.2, 64);

TEST(Blend, IsTheSmoothStep) {
  EXPECT_EQ(blend(0), 0);
  EXPECT_EQ(blend(0.5), 0.5);
  EXPECT_EQ(blend(1), 1);
  for (const double t : {0.1, 0.25, 0.4}) EXPECT_NEAR(blend(t) + blend(1 - t), 1, 1e-15) << "point symmetric";
  EXPECT_NEAR(blend(1e-6) / 1e-12, 3, 1e-5) << "flat at its ends";
}

TEST(GrayMatch, NegativeTemperatureKeepsTheDisplaysOwnWhite) {
  matrix want(rows, 3);
  chromaticity_lut(want, mon(), xyz2xy(mon().whitepoint)->v, curve, 0.9);
  matrix tab(rows, 3);
  EXPECT_EQ(cv1(mon(), {.temp = -1, .wptemp = 5000, .alpha = 0.9, .beta = 0.1, .hwid = 0.01}, curve, tab), 0)
      << "parameters are not checked, nor looked at but for alpha";
  EXPECT_EQ(tab, want);
}

TEST(GrayMatch, RefusesItsParametersInOrderAndTouchesNothing) {
  const struct {
    double alpha, beta;
    int status;
    const char* why;
  } cases[] = {{0.9, 0.8, 1, "alpha above beta"},
               {0.8, 0.8, 1, "alpha equal to beta"},
               {1.5, 1.2, 1, "both wrong: alpha first"},
               {0.5, 1.2, 2, "beta above 1"}};
  for (const auto& c : cases) {
    matrix tab(rows, 3);
    std::ranges::fill(tab.data(), 7.0);
    const matrix before = tab;
    EXPECT_EQ(cv1(mon(), {.temp = 6500, .alpha = c.alpha, .beta = c.beta}, curve, tab), c.status) << c.why;
    EXPECT_EQ(tab, before) << c.why;
  }
}

TEST(GrayMatch, ShadesTheTopTowardsASecondTemperature) {
  const double own = xyz2cct(mon().whitepoint);
  const struct {
    double wptemp, second, alpha, beta;
    double k0;  // row, counted from 1, where the shading starts
    const char* why;
  } cases[] = {{-1, 6500, 0.5, 0.8, 13, "no shading"},
               {9000, 9000, 0.5, 0.8, 13, "12.8 rounded"},
               {0, own, 0.5, 0.8, 13, "0: the display's own white"},
               {9000, 9000, 0.5, 0.90625, 15, "14.5: halves are rounded up"},
               {9000, 9000, 0.01, 0.02, 1, "a beginning before the first row moves there"},
               {9000, 9000, 0.5, 1.0, 16, "0/0 in the one row left: not a number, and kept so"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.why);
    matrix first(rows, 3), second(rows, 3), tab(rows, 3);
    colortemp_lut(first, mon(), 6500, curve, c.alpha, 0);
    colortemp_lut(second, mon(), c.second, curve, c.alpha, 0);
    ASSERT_EQ(cv1(mon(), {.temp = 6500, .wptemp = c.wptemp, .alpha = c.alpha, .beta = c.beta}, curve, tab), 0);
    for (std::size_t i = 0; i < rows; ++i) {
      const double at = static_cast<double>(i + 1);
      const double w = at < c.k0 ? 0 : blend((at - c.k0) / (rows - c.k0));
      for (std::size_t k = 0; k < 3; ++k) {
        if (std::isnan(w)) {
          EXPECT_TRUE(std::isnan(tab(i, k)));
        } else {
          EXPECT_NEAR(tab(i, k), first(i, k) * (1 - w) + second(i, k) * w, 1e-15) << i;
        }
      }
    }
  }
}

}  // namespace
}  // namespace corvantile
