#include "corvantile/appraisal/scene.hpp"

#include <algorithm>
#include <utility>

#include "corvantile/colour/chromaticity.hpp"
#include "corvantile/colour/color_metrics.hpp"
#include "corvantile/colour/nonpar_monitor.hpp"
#include "corvantile/numerics/linsolv.hpp"

namespace corvantile {
namespace {

triangle own_primaries(const monitor& display) {
  const chromaticity_table c = rgb2c_type(display.RGB2XYZ);
  return {c.red, c.green, c.blue};
}

vec2 white_asked_for(const correction& result, const settings& set) {
  return matches_gray(result.mode) ? white_of_grays(gray_ramp_of(set), result.display) : set.xytable.white;
}

}  // namespace

subject subject_of(const correction& result, const settings& set) {
  subject s{.display = result.measured,
            .tables = tables_of(result),
            .bits = set.nbits,
            .white = white_asked_for(result, set),
            .primaries = {},
            .tone = interpolator(result.tone)};
  if (matches_gray(result.mode)) s.dark_below = set.alpha;
  s.factors = result.factors;
  if (result.two) {
    s.primaries = {set.xytable.red, set.xytable.green, set.xytable.blue};
    s.lumfrac = set.lumfrac;
  }
  return s;
}

asked_display make_asked_display(const triangle& primaries, const vec2& white, double luminance, const vec3& dark,
                                 std::function<double(double)> tone) {
  const vec3 full = xy2xyz(white, luminance);
  const vec3 light = full - dark;
  const mat3 unit = c2rgb_type({primaries[0], primaries[1], primaries[2], chromaticity(light)});
  return {unit * light[1], full, dark, std::move(tone), {}};
}

vec3 asked_xyz(const asked_display& a, const vec3& drive) {
  if (is_gray(drive) && a.dark_below)
    return a.tone(drive[0]) * a.white + dark_share(drive[0], *a.dark_below) * a.dark;
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

vec2 uv_of(const vec3& xyz) { return xy2uv1976(chromaticity(xyz)); }

double difference_of(const vec3& xyz1, const vec3& xyz2, const vec3& white) {
  return deltae2000_vec(xyz2lab_vec(xyz1, white), xyz2lab_vec(xyz2, white));
}

vec3 scene::through(const vec3& u) const {
  const vec3 d = corrected(of.tables, u);
  return {{std::clamp(d[0], 0.0, 1.0), std::clamp(d[1], 0.0, 1.0), std::clamp(d[2], 0.0, 1.0)}};
}

vec3 scene::after(const vec3& u) const {
  const double share = asked.dark_below && is_gray(u) ? dark_share(u[0], *asked.dark_below) : 0;
  return expected(of.factors, u, before(through(u)), share * asked.dark);
}

vec3 scene::scaled_before(const vec3& u) const { return (asked.white[1] / before(gray(1))[1]) * before(u); }

double scene::difference(const vec3& drive, const vec3& xyz) const {
  return difference_of(asked_xyz(asked, drive), xyz, asked.white);
}

scene make_scene(const subject& s) {
  scene sc{s, prepared_monitor(s.display), {}};
  sc.asked = make_asked_display(s.primaries.value_or(own_primaries(s.display)), s.white, sc.after(gray(1))[1],
                                s.display.darklight, s.tone);
  sc.asked.dark_below = s.dark_below;
  return sc;
}

}  // namespace corvantile
