// What the shipped tables do to the displays they were made for. A simulated display is known exactly, so this judges
// the whole chain (measuring, fitting, solving, writing) by nothing but the physics of the display.

#include <algorithm>
#include <cmath>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

#include "tools/simulated_display.hpp"

namespace corvantile {
namespace {

using table = std::vector<vec3>;

table read_table(const std::string& name) {
  std::ifstream in(EXAMPLES "/" + name);
  table t;
  for (vec3 row; in >> row[0] >> row[1] >> row[2];) t.push_back(row);
  return t;
}

/// The display that the command in the comments of the measurements describes.
simulated_display display_of(const std::string& example) {
  std::ifstream in(EXAMPLES "/" + example + "/measurements.txt");
  std::string line;
  while (!line.starts_with("; Made by:")) std::getline(in, line);
  simulated_display d;
  std::istringstream words(line);
  for (std::string w; words >> w;) set_parameter(d, w);
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

// Noise of 0.1 % in the measurements, the smooth fit and the four digits of the published figures set the tolerances.
void expect_xy(const vec3& xyz, double x, double y, double tol) {
  EXPECT_NEAR(xyz[0] / (xyz[0] + xyz[1] + xyz[2]), x, tol);
  EXPECT_NEAR(xyz[1] / (xyz[0] + xyz[1] + xyz[2]), y, tol);
}

TEST(Examples, GrayAxesAreTheBlackbodyColourOf6500KelvinAndPrimariesThoseOfSrgb) {
  const simulated_display d = display_of("gray_axis"), e = display_of("two_table");
  const table gray = read_table("gray_axis/expected/postLUT.txt"), pre = read_table("two_table/expected/preLUT.txt"),
              mix = read_table("two_table/expected/matrix.txt"), post = read_table("two_table/expected/postLUT.txt");
  const mat3 m{{vec3{{mix[0][0], mix[1][0], mix[2][0]}}, vec3{{mix[0][1], mix[1][1], mix[2][1]}},
                vec3{{mix[0][2], mix[1][2], mix[2][2]}}}};
  const double top = shown(d, gray.back())[1];
  for (int i = 96; i <= 255; ++i) {
    const vec3 u = i / 255.0 * vec3{{1, 1, 1}};
    expect_xy(shown(d, lookup(gray, u)), 0.3135, 0.3237, 0.0005);  // Planck's law, CIE 1931 observer
    expect_xy(shown(e, lookup(post, m * lookup(pre, u))), 0.3135, 0.3237, 0.0005);
    EXPECT_NEAR(shown(d, lookup(gray, u))[1] / top, std::pow(u[0], 2.2), 0.003) << i;
  }
  EXPECT_NEAR(std::ranges::max(gray.back().v), 1, 1e-6) << "a brighter 6500 K does not exist";
  const double white = (shown(e, lookup(post, m * vec3{{1, 1, 1}})) - dark_light(e))[1];
  const vec3 srgb[] = {{{0.64, 0.33, 0.2126}}, {{0.30, 0.60, 0.7152}}, {{0.15, 0.06, 0.0722}}};  // IEC 61966-2-1
  for (std::size_t c = 0; c < 3; ++c) {
    const vec3 xyz = shown(e, lookup(post, m.col[c])) - dark_light(e);
    expect_xy(xyz, srgb[c][0], srgb[c][1], 0.003);
    EXPECT_NEAR(xyz[1] / white, srgb[c][2], 0.003);
  }
}

}  // namespace
}  // namespace corvantile
