#include "corvantile/report/scene.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

#include "corvantile/colour/chromaticity.hpp"
#include "corvantile/colour/color_metrics.hpp"
#include "corvantile/numerics/linsolv.hpp"
#include "corvantile/report/svg.hpp"

namespace corvantile {
namespace {

triangle own_primaries(const monitor& display) {
  const chromaticity_table c = rgb2c_type(display.RGB2XYZ);
  return {c.red, c.green, c.blue};
}

// The slope of ln(Y - black) over ln(drive), across some hundredths of the drive so that single table rows do not
// show.
std::vector<double> local_gamma(const std::vector<double>& drive, const std::vector<double>& luminance) {
  constexpr double reach = 0.02;
  const std::size_t n = drive.size();
  std::vector<double> gamma(n, unknown);
  if (n == 0 || drive[0] != 0) return gamma;  // the black is not known
  for (std::size_t i = 1; i + 1 < n; ++i) {
    std::size_t low = i - 1;
    std::size_t high = i + 1;
    while (low > 1 && drive[i] - drive[low] < reach) --low;
    while (high + 1 < n && drive[high] - drive[i] < reach) ++high;
    gamma[i] = std::log((luminance[high] - luminance[0]) / (luminance[low] - luminance[0])) /
               std::log(drive[high] / drive[low]);
  }
  return gamma;
}

}  // namespace

vec2 uv_of(const vec3& xyz) { return xy2uv1976(chromaticity(xyz)); }

double apart(const vec2& a, const vec2& b) { return std::hypot(a[0] - b[0], a[1] - b[1]); }

double difference_of(const vec3& xyz1, const vec3& xyz2, const vec3& white) {
  return deltae2000_vec(xyz2lab_vec(xyz1, white), xyz2lab_vec(xyz2, white));
}

scene make_scene(const report_source& s) {
  scene sc{s, prepared_monitor(s.display), {}, {}};
  const triangle primaries = s.primaries.value_or(own_primaries(s.display));
  sc.asked = make_asked_display(primaries, s.white, sc.after(gray(1))[1], s.display.darklight, s.tone);
  sc.asked.dark_below = s.dark_below;
  sc.light = inv(c2rgb_type({primaries[0], primaries[1], primaries[2], s.white}));
  return sc;
}

gray_curve curve_of(const scene& sc, std::vector<double> drive, const std::vector<vec3>& xyz) {
  gray_curve c;
  const vec2 white = xy2uv1976(sc.source.white);
  for (const vec3& v : xyz) {
    c.cct.push_back(xyz2cct(v));
    c.distance.push_back(apart(uv_of(v), white));
    const vec3 rgb = sc.light * (v / v[1]);
    for (std::size_t k = 0; k < 3; ++k) c.balance[k].push_back(100 * rgb[k]);
    c.luminance.push_back(v[1]);
  }
  c.gamma = local_gamma(drive, c.luminance);
  c.drive = std::move(drive);
  return c;
}

white_record white_of(const vec3& xyz, double black, const vec2& asked) {
  const vec2 xy = chromaticity(xyz);
  return {xy, xyz2cct(xy), apart(xy2uv1976(xy), xy2uv1976(asked)), xyz[1], black};
}

std::string drive_text(double s) { return "drive " + svg::number(100 * s) + "\u00a0%"; }

const char* how_close(const difference_summary& gray) {
  if (gray.mean < 0.5 && gray.max < 2) return "very closely";
  if (gray.mean < 1 && gray.max < 3) return "closely";
  return gray.mean < 2 ? "roughly" : "not closely";
}

}  // namespace corvantile
