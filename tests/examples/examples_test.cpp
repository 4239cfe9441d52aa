// What the shipped tables do to the displays they were made for. A simulated display is known exactly, so this judges
// the whole chain (measuring, fitting, solving, writing) by nothing but the physics of the display.

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

#include "tools/simulated_display.hpp"

namespace corvantile {
namespace {

using table = std::vector<vec3>;

std::string folder(const std::string& example) { return EXAMPLES "/" + example + "/"; }

table read_table(const std::string& name) {
  std::ifstream in(name);
  table t;
  for (vec3 row; in >> row[0] >> row[1] >> row[2];) t.push_back(row);
  EXPECT_GE(t.size(), 3u) << name;
  return t;
}

/// The display that the command in the comments of the measurements describes.
simulated_display display_of(const std::string& example) {
  std::ifstream in(folder(example) + "measurements.txt");
  const std::string start = "; Made by: simulate_display";
  simulated_display d;
  for (std::string line; std::getline(in, line);) {
    if (!line.starts_with(start)) continue;
    std::istringstream words(line.substr(start.size()));
    for (std::string w; words >> w;) EXPECT_EQ(set_parameter(d, w), "");
    return d;
  }
  ADD_FAILURE() << "no command in the comments";
  return d;
}

vec3 lookup(const table& t, const vec3& x) {
  vec3 y;
  for (std::size_t c = 0; c < 3; ++c) {
    const double p = std::clamp(x[c], 0.0, 1.0) * static_cast<double>(t.size() - 1);
    const std::size_t i = std::min(static_cast<std::size_t>(p), t.size() - 2);
    y[c] = t[i][c] + (p - static_cast<double>(i)) * (t[i + 1][c] - t[i][c]);
  }
  return y;
}

vec2 chromaticity(const vec3& xyz) {
  const double sum = xyz[0] + xyz[1] + xyz[2];
  return {{xyz[0] / sum, xyz[1] / sum}};
}

// Noise of 0.1 % in the measurements, the smooth fit and the four digits of the published figures set the tolerances.

TEST(Examples, GrayAxisIsTheBlackbodyColourOf6500KelvinOnGamma22) {
  const simulated_display d = display_of("gray_axis");
  const table post = read_table(folder("gray_axis") + "expected/postLUT.txt");
  const double top = shown(d, lookup(post, {{1, 1, 1}}))[1];
  for (int i = 64; i <= 255; ++i) {
    const double u = i / 255.0;
    const vec3 xyz = shown(d, lookup(post, {{u, u, u}}));
    const vec2 xy = chromaticity(xyz);
    // Planck's law at 6500 K, CIE 1931 observer; 0.3135, 0.3237 in the tables of colour science.
    EXPECT_NEAR(xy[0], 0.3135, 0.0005) << "level " << i;
    EXPECT_NEAR(xy[1], 0.3237, 0.0005) << "level " << i;
    EXPECT_NEAR(xyz[1] / top, std::pow(u, 2.2), 0.003) << "level " << i;
  }
  const vec3 brightest = post.back();
  EXPECT_NEAR(std::max({brightest[0], brightest[1], brightest[2]}), 1, 1e-6) << "a brighter 6500 K does not exist";
}

TEST(Examples, TwoTablesShowTheColoursOfAnSrgbDisplayWithGamma22) {
  const simulated_display d = display_of("two_table");
  const std::string expected = folder("two_table") + "expected/";
  // Without the gray-axis table that is folded into the pre-table: the plain tone curve.
  const table matrix = read_table(expected + "matrix.txt"), post = read_table(expected + "postLUT.txt");
  const auto corrected = [&](const vec3& drive) {
    vec3 mixed;
    for (std::size_t r = 0; r < 3; ++r)
      for (std::size_t c = 0; c < 3; ++c) mixed[r] += matrix[r][c] * std::pow(drive[c], 2.2);
    return shown(d, lookup(post, mixed)) - dark_light(d);
  };
  const double top = corrected({{1, 1, 1}})[1];
  // IEC 61966-2-1: chromaticity and share of the white's luminance.
  const struct {
    vec3 drive;
    vec2 xy;
    double luminance;
    const char* what;
  } colours[] = {{{{1, 1, 1}}, {{0.3127, 0.3290}}, 1, "white"},
                 {{{0.5, 0.5, 0.5}}, {{0.3127, 0.3290}}, std::pow(0.5, 2.2), "gray"},
                 {{{1, 0, 0}}, {{0.64, 0.33}}, 0.2126, "red"},
                 {{{0, 1, 0}}, {{0.30, 0.60}}, 0.7152, "green"},
                 {{{0, 0, 1}}, {{0.15, 0.06}}, 0.0722, "blue"},
                 {{{1, 1, 0}}, {{0.4193, 0.5053}}, 0.9278, "yellow"},
                 {{{0, 1, 1}}, {{0.2246, 0.3287}}, 0.7874, "cyan"},
                 {{{1, 0, 1}}, {{0.3209, 0.1542}}, 0.2848, "magenta"}};
  for (const auto& c : colours) {
    SCOPED_TRACE(c.what);
    const vec3 xyz = corrected(c.drive);
    const vec2 xy = chromaticity(xyz);
    EXPECT_NEAR(xy[0], c.xy[0], 0.003);
    EXPECT_NEAR(xy[1], c.xy[1], 0.003);
    EXPECT_NEAR(xyz[1] / top, c.luminance, 0.003);
  }
}

TEST(Examples, FoldedGrayAxisHolds6500KelvinThroughTheWholeChain) {
  const simulated_display d = display_of("two_table");
  const std::string expected = folder("two_table") + "expected/";
  const table pre = read_table(expected + "preLUT.txt"), matrix = read_table(expected + "matrix.txt"),
              post = read_table(expected + "postLUT.txt");
  for (int i = 96; i <= 255; ++i) {
    const double u = i / 255.0;
    const vec3 linear = lookup(pre, {{u, u, u}});
    vec3 mixed;
    for (std::size_t r = 0; r < 3; ++r)
      for (std::size_t c = 0; c < 3; ++c) mixed[r] += matrix[r][c] * linear[c];
    const vec2 xy = chromaticity(shown(d, lookup(post, mixed)));
    EXPECT_NEAR(xy[0], 0.3135, 0.0005) << "level " << i;
    EXPECT_NEAR(xy[1], 0.3237, 0.0005) << "level " << i;
  }
}

}  // namespace
}  // namespace corvantile
