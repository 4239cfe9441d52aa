#include "corvantile/report/target.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

#include "corvantile/colour/chromaticity.hpp"
#include "corvantile/numerics/linsolv.hpp"

namespace corvantile {
namespace {

// How much of the dark a gray target holds: as the gray match blends it in.
double dark_share(const asked_display& a, double s) {
  if (!a.dark_below) return 1;
  if (s == 0) return 1;
  return s <= *a.dark_below ? (std::cos(std::numbers::pi * s / *a.dark_below) + 1) / 2 : 0;
}

}  // namespace

asked_display make_asked_display(const triangle& primaries, const vec2& white, double luminance, const vec3& dark,
                                 std::function<double(double)> tone) {
  const vec3 full = xy2xyz(white, luminance);
  const vec3 light = full - dark;
  const mat3 unit = c2rgb_type({primaries[0], primaries[1], primaries[2], chromaticity(light)});
  return {unit * light[1], full, dark, std::move(tone), {}};
}

vec3 asked_xyz(const asked_display& a, const vec3& drive) {
  const bool gray = drive[0] == drive[1] && drive[1] == drive[2];
  if (gray && a.dark_below) return a.tone(drive[0]) * a.white + dark_share(a, drive[0]) * a.dark;
  return a.primaries * vec3{{a.tone(drive[0]), a.tone(drive[1]), a.tone(drive[2])}} + a.dark;
}

vec3 asked_drive(const asked_display& a, const vec3& xyz) {
  const vec3 linear = inv(a.primaries) * (xyz - a.dark);
  vec3 drive;
  for (std::size_t c = 0; c < 3; ++c) {
    double low = 0;
    double high = 1;
    for (int step = 0; step < 24; ++step) {
      const double middle = (low + high) / 2;
      (a.tone(middle) < linear[c] ? low : high) = middle;
    }
    drive[c] = (low + high) / 2;
  }
  return drive;
}

}  // namespace corvantile
