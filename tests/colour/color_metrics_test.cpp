#include "colour/color_metrics.hpp"

#include <cmath>
#include <gtest/gtest.h>

namespace corvantile {
namespace {

TEST(Cuberoot, SwitchesToTheLineAtTheRoundedThreshold) {
  EXPECT_EQ(cuberoot(0.008856), 7.787 * 0.008856 + 16.0 / 116.0) << "the threshold itself lies on the line";
  EXPECT_EQ(cuberoot(std::nextafter(0.008856, 1)), std::pow(std::nextafter(0.008856, 1), 1.0 / 3.0));
  EXPECT_EQ(cuberoot(0), 0.13793103448275862);
  EXPECT_DOUBLE_EQ(cuberoot(0.125), 0.5);
}

TEST(Xyz2Lab, FollowsItsDefinition) {
  const vec3 white{{95.047, 100, 108.883}};
  const struct {
    vec3 xyz, lab;
    const char* why;
  } rows[] = {{white, {{100, 0, 0}}, "the white itself"},
              {{{0, 0, 0}}, {{0, 0, 0}}, "black: 116 * 16/116 - 16"},
              {0.125 * white, {{42, 0, 0}}, "a neutral gray at half the root: 116 / 2 - 16"},
              {{{95.047, 12.5, 108.883}}, {{42, 250, -100}}, "a* and b* take X and Z against Y"}};
  matrix batch(std::size(rows), 3);
  for (std::size_t i = 0; i < std::size(rows); ++i) set_row3(batch, i, rows[i].xyz);
  const matrix lab = xyz2lab_mat(batch, white);
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    SCOPED_TRACE(rows[i].why);
    for (std::size_t c = 0; c < 3; ++c) EXPECT_NEAR(lab(i, c), rows[i].lab[c], 5e-14);
    EXPECT_EQ(row3(lab, i), xyz2lab_vec(rows[i].xyz, white));
  }
}

// Sharma, Wu and Dalal (2005), table 1; four decimals. In pairs 10 and 14 the hues differ by pi to the last bit:
// rounding that falls on the other side gives 7.2195 and 4.7461.
const struct pair_row {
  vec3 lab1, lab2;
  double de;
} published[] = {
    // clang-format off
    {{{50.0000, 2.6772, -79.7751}}, {{50.0000, 0.0000, -82.7485}}, 2.0425},
    {{{50.0000, 3.1571, -77.2803}}, {{50.0000, 0.0000, -82.7485}}, 2.8615},
    {{{50.0000, 2.8361, -74.0200}}, {{50.0000, 0.0000, -82.7485}}, 3.4412},
    {{{50.0000, -1.3802, -84.2814}}, {{50.0000, 0.0000, -82.7485}}, 1.0000},
    {{{50.0000, -1.1848, -84.8006}}, {{50.0000, 0.0000, -82.7485}}, 1.0000},
    {{{50.0000, -0.9009, -85.5211}}, {{50.0000, 0.0000, -82.7485}}, 1.0000},
    {{{50.0000, 0.0000, 0.0000}}, {{50.0000, -1.0000, 2.0000}}, 2.3669},
    {{{50.0000, -1.0000, 2.0000}}, {{50.0000, 0.0000, 0.0000}}, 2.3669},
    {{{50.0000, 2.4900, -0.0010}}, {{50.0000, -2.4900, 0.0009}}, 7.1792},
    {{{50.0000, 2.4900, -0.0010}}, {{50.0000, -2.4900, 0.0010}}, 7.1792},
    {{{50.0000, 2.4900, -0.0010}}, {{50.0000, -2.4900, 0.0011}}, 7.2195},
    {{{50.0000, 2.4900, -0.0010}}, {{50.0000, -2.4900, 0.0012}}, 7.2195},
    {{{50.0000, -0.0010, 2.4900}}, {{50.0000, 0.0009, -2.4900}}, 4.8045},
    {{{50.0000, -0.0010, 2.4900}}, {{50.0000, 0.0010, -2.4900}}, 4.8045},
    {{{50.0000, -0.0010, 2.4900}}, {{50.0000, 0.0011, -2.4900}}, 4.7461},
    {{{50.0000, 2.5000, 0.0000}}, {{50.0000, 0.0000, -2.5000}}, 4.3065},
    {{{50.0000, 2.5000, 0.0000}}, {{73.0000, 25.0000, -18.0000}}, 27.1492},
    {{{50.0000, 2.5000, 0.0000}}, {{61.0000, -5.0000, 29.0000}}, 22.8977},
    {{{50.0000, 2.5000, 0.0000}}, {{56.0000, -27.0000, -3.0000}}, 31.9030},
    {{{50.0000, 2.5000, 0.0000}}, {{58.0000, 24.0000, 15.0000}}, 19.4535},
    {{{50.0000, 2.5000, 0.0000}}, {{50.0000, 3.1736, 0.5854}}, 1.0000},
    {{{50.0000, 2.5000, 0.0000}}, {{50.0000, 3.2972, 0.0000}}, 1.0000},
    {{{50.0000, 2.5000, 0.0000}}, {{50.0000, 1.8634, 0.5757}}, 1.0000},
    {{{50.0000, 2.5000, 0.0000}}, {{50.0000, 3.2592, 0.3350}}, 1.0000},
    {{{60.2574, -34.0099, 36.2677}}, {{60.4626, -34.1751, 39.4387}}, 1.2644},
    {{{63.0109, -31.0961, -5.8663}}, {{62.8187, -29.7946, -4.0864}}, 1.2630},
    {{{61.2901, 3.7196, -5.3901}}, {{61.4292, 2.2480, -4.9620}}, 1.8731},
    {{{35.0831, -44.1164, 3.7933}}, {{35.0232, -40.0716, 1.5901}}, 1.8645},
    {{{22.7233, 20.0904, -46.6940}}, {{23.0331, 14.9730, -42.5619}}, 2.0373},
    {{{36.4612, 47.8580, 18.3852}}, {{36.2715, 50.5065, 21.2231}}, 1.4146},
    {{{90.8027, -2.0831, 1.4410}}, {{91.1528, -1.6435, 0.0447}}, 1.4441},
    {{{90.9257, -0.5406, -0.9208}}, {{88.6381, -0.8985, -0.7239}}, 1.5381},
    {{{6.7747, -0.2908, -2.4247}}, {{5.8714, -0.0985, -2.2286}}, 0.6377},
    {{{2.0776, 0.0795, -1.1350}}, {{0.9033, -0.0636, -0.5514}}, 0.9082},
    // clang-format on
};

TEST(DeltaE2000, ReproducesThePublishedPairsInBothOrders) {
  constexpr std::size_t n = std::size(published);
  matrix first(n, 3);
  matrix second(n, 3);
  for (std::size_t i = 0; i < n; ++i) {
    set_row3(first, i, published[i].lab1);
    set_row3(second, i, published[i].lab2);
  }
  const auto forth = deltae2000_mat(first, second);
  const auto back = deltae2000_mat(second, first);
  for (std::size_t i = 0; i < n; ++i) {
    SCOPED_TRACE(testing::Message() << "pair " << i + 1);
    EXPECT_NEAR(forth[i], published[i].de, 5.01e-5);
    EXPECT_NEAR(back[i], published[i].de, 5.01e-5);
    EXPECT_EQ(forth[i], deltae2000_vec(published[i].lab1, published[i].lab2, {{1, 1, 1}})) << "factors default to 1";
    EXPECT_EQ(deltae2000_vec(published[i].lab1, published[i].lab1), 0.0);
  }
}

TEST(DeltaE2000, FactorsDivideTheirOwnTerm) {
  const vec3 gray{{40, 0, 0}};
  const double plain = deltae2000_vec(gray, {{60, 0, 0}});
  EXPECT_DOUBLE_EQ(plain, 20) << "lightness alone, about a mean of 50";
  EXPECT_DOUBLE_EQ(deltae2000_vec(gray, {{60, 0, 0}}, {{2, 1, 1}}), plain / 2);
  EXPECT_DOUBLE_EQ(deltae2000_vec(gray, {{40, 0, 30}}, {{1, 3, 1}}), deltae2000_vec(gray, {{40, 0, 30}}) / 3);
  const vec3 a{{50, 30, 1}};  // a hue difference alone, far from the blue rotation
  const vec3 b{{50, 30, -1}};
  EXPECT_DOUBLE_EQ(deltae2000_vec(a, b, {{1, 1, 4}}), deltae2000_vec(a, b) / 4);
}

}  // namespace
}  // namespace corvantile
