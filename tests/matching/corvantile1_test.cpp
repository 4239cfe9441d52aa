#include <cmath>
#include <gtest/gtest.h>

#include "corvantile/colour/chromaticity.hpp"
#include "corvantile/colour/nonpar_monitor.hpp"
#include "corvantile/matching/matching.hpp"
#include "tests/monitor/fitted.hpp"

namespace corvantile {
namespace {

constexpr std::size_t rows = 16;
const lut curve = make_gamma_table(2.2, 64);

TEST(GrayMatch, LooksAtItsParametersInOrderUnlessTheDisplaysOwnWhiteIsKept) {
  matrix want(rows, 3), tab(rows, 3);
  EXPECT_EQ(cv1(plain, {.temp = 6500, .alpha = 0.8, .beta = 0.8}, curve, tab).status, 1);
  EXPECT_EQ(cv1(plain, {.temp = 6500, .alpha = 1.5, .beta = 1.2}, curve, tab).status, 1) << "both wrong: alpha first";
  EXPECT_EQ(cv1(plain, {.temp = 6500, .alpha = 0.5, .beta = 1.2}, curve, tab).status, 2);
  EXPECT_EQ(tab, want) << "untouched";
  chromaticity_lut(want, plain, *xyz2xy(plain.whitepoint), curve, 0.9);
  EXPECT_EQ(cv1(plain, {.temp = -1, .wptemp = 5000, .alpha = 0.9, .beta = 0.1, .hwid = 0.01}, curve, tab).status, 0);
  EXPECT_EQ(tab, want);
}

TEST(GrayMatch, ShadesTheTopTowardsASecondTemperature) {
  const double own = xyz2cct(plain.whitepoint);
  const struct {
    double wptemp, second, alpha, beta, k0;     // k0: the row, counted from 1, where the shading starts
  } cases[] = {{-1, 6500, 0.5, 0.8, 13},        // no shading
               {0, own, 0.5, 0.8, 13},          // the display's own white; 12.8 rounded
               {9000, 9000, 0.5, 0.90625, 15},  // 14.5: halves round up
               {9000, 9000, 0.01, 0.02, 1},     // a start before the first row moves there
               {9000, 9000, 0.5, 1.0, 16}};     // 0/0 in the only row left: deliberately NaN
  for (const auto& c : cases) {
    matrix first(rows, 3), second(rows, 3), tab(rows, 3);
    colortemp_lut(first, plain, 6500, curve, c.alpha, 0.002);
    colortemp_lut(second, plain, c.second, curve, c.alpha, 0.002);
    const gray_match match = cv1(plain, {6500, c.wptemp, c.alpha, c.beta, 0.002}, curve, tab);
    EXPECT_EQ(match.status, 0);
    EXPECT_EQ(match.undefined_row, c.beta == 1 ? std::optional(rows - 1) : std::nullopt);
    for (std::size_t i = 0; i < rows; ++i) {
      const double t = (static_cast<double>(i + 1) - c.k0) / (rows - c.k0);
      const double w = t < 0 ? 0 : 3 * t * t - 2 * t * t * t;
      const vec3 off = row3(tab, i) - ((1 - w) * row3(first, i) + w * row3(second, i));
      EXPECT_TRUE(std::isnan(w) ? std::isnan(off[0]) : dist2(off, {}) < 1e-30) << c.beta << ", row " << i;
    }
  }
}

}  // namespace
}  // namespace corvantile
