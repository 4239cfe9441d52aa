#include "corvantile/appraisal/job_figures.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

#include "corvantile/appraisal/gamut.hpp"
#include "corvantile/appraisal/test_patches.hpp"
#include "corvantile/colour/nonpar_monitor.hpp"
#include "corvantile/numerics/linsolv.hpp"

namespace corvantile {
namespace {

constexpr int largest_code = 255;
constexpr int ramp_step = 5;  // codes

// ---- The gray axis ----

// The slope of ln(Y - black) over ln(drive), taken over some hundredths of the drive to hide single table rows.
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

// Drives of 8 bits: all of the dark ones, then every other.
std::vector<double> gray_drives() {
  std::vector<double> d;
  for (int code = 0; code <= largest_code; code += code < 39 ? 1 : 2) d.push_back(code / 255.0);
  return d;
}

gray_curve shown_grays(const scene& sc, const shown_by& show) {
  const std::vector<double> drive = gray_drives();
  std::vector<vec3> xyz(drive.size());
  std::ranges::transform(drive, xyz.begin(), [&](double s) { return show(gray(s)); });
  return gray_curve_of(sc, drive, xyz);
}

// The lowest and highest colour temperature within the tolerance around the white asked for.
void temperature_band(gray_figures& g, const vec2& white) {
  const vec2 centre = xy2uv1976(white);
  g.cct_low = g.cct_high = xyz2cct(white);
  constexpr int directions = 90;
  for (int i = 0; i < directions; ++i) {
    const double angle = 2 * std::numbers::pi * i / directions;
    const vec2 uv{{centre[0] + g.tolerance * std::cos(angle), centre[1] + g.tolerance * std::sin(angle)}};
    const double cct = xyz2cct(uv2xy_vec({{uv[0], uv[1] / 1.5}}));
    g.cct_low = std::min(g.cct_low, cct);
    g.cct_high = std::max(g.cct_high, cct);
  }
}

difference_summary gray_differences(const scene& sc, const shown_by& show) {
  difference_counter all;
  for (int code = 0; code <= largest_code; ++code) {
    const vec3 u = gray(code / 255.0);
    all.add(sc.difference(u, show(u)), u);
  }
  return all.result();
}

gray_figures gray_axis(const scene& sc, const shown_by& scaled_before, const shown_by& after) {
  gray_figures g;
  g.asked = shown_grays(sc, [&](const vec3& u) { return asked_xyz(sc.asked, u); });
  g.before = shown_grays(sc, [&](const vec3& u) { return sc.before(u); });
  g.after = shown_grays(sc, after);
  temperature_band(g, sc.of.white);
  g.difference_before = gray_differences(sc, scaled_before);
  g.difference_after = gray_differences(sc, after);
  return g;
}

// ---- Colours ----

difference_summary corner_differences(const scene& sc, const shown_by& show) {
  difference_counter all;
  for (const test_ramp& ramp : test_ramps)
    if (!is_gray(ramp.on)) all.add(sc.difference(ramp.on, show(ramp.on)), ramp.on);
  return all.result();
}

ramp_differences along(const scene& sc, const test_ramp& ramp) {
  ramp_differences r;
  for (int code = 0; code <= largest_code; code += ramp_step) {
    const vec3 u = code / 255.0 * ramp.on;
    r.drive.push_back(code / 255.0);
    r.before.push_back(sc.difference(u, sc.scaled_before(u)));
    r.after.push_back(sc.difference(u, sc.after(u)));
  }
  return r;
}

patch_figures judged(const scene& sc, const test_patch& p) {
  const vec3 u{{p.code[0] / 255.0, p.code[1] / 255.0, p.code[2] / 255.0}};
  const vec3 shown = sc.after(u);
  return {p.name, u, asked_drive(sc.asked, shown), sc.difference(u, sc.scaled_before(u)), sc.difference(u, shown)};
}

gamut_figures gamut_of(const scene& sc) {
  gamut_figures g;
  g.before = corners_of([&](const vec3& u) { return sc.before(u); });
  g.after = corners_of([&](const vec3& u) { return sc.after(u); });
  const auto before = primaries_in_uv1976(g.before), after = primaries_in_uv1976(g.after);
  const auto add = [&](std::string_view name, const chromaticity_table& space) {
    const auto wanted = primaries_in_uv1976(space);
    g.coverage.push_back({name, coverage(before, wanted), coverage(after, wanted)});
  };
  if (const auto& p = sc.of.primaries) {
    g.asked = {.red = (*p)[0], .green = (*p)[1], .blue = (*p)[2], .white = sc.of.white};
    add("asked for", *g.asked);
    const auto asked = primaries_in_uv1976(*g.asked);
    for (std::size_t c = 0; c < 3; ++c) g.missed[c] = length(asked[c] - after[c]);
  }
  for (const standard_gamut& s : standard_gamuts) add(s.name, s.xy);
  return g;
}

light_left light_of(const scene& sc) {
  const double top = ramptop_xyz(sc.of.display, sc.of.white).xyz[1];
  light_left l{
      .white = top / sc.before(gray(1))[1], .lumfrac = sc.of.lumfrac, .limit = 1 / factors_at(sc.of.factors, 1)[1]};
  l.rest = sc.after(gray(1))[1] / (top * l.lumfrac * l.limit);
  return l;
}

}  // namespace

banding_figures banding(const shown_by& chain, int bits) {
  const double top = std::ldexp(1.0, bits) - 1;
  banding_figures b{bits, {}, {1, 1, 1}};
  vec3 previous{{-1, -1, -1}}, run{{1, 1, 1}};
  for (double i = 0; i <= top; ++i) {
    const vec3 out = chain(gray(i / top));
    for (std::size_t c = 0; c < 3; ++c) {
      const double code = std::round(out[c] * top);
      const bool lost = code == previous[c];
      run[c] = lost ? run[c] + 1 : 1;
      b.steps_lost[c] += lost ? 1 : 0;
      b.longest_run[c] = std::max(b.longest_run[c], run[c]);
      previous[c] = code;
    }
  }
  return b;
}

clip_figures clipped_entries(const matrix& table, int bits) {
  const double top = bits > 0 ? std::ldexp(1.0, bits) - 1 : 1;
  clip_figures r;
  for (std::size_t c = 0; c < std::min<std::size_t>(3, table.cols()); ++c) {
    for (const double v : table.col(c)) {
      const double code = bits > 0 ? std::round(v * top) : v;
      if (code < 0) ++r.below[c];
      if (code > top) ++r.above[c];
    }
  }
  return r;
}

chromaticity_table corners_of(const shown_by& show) {
  const vec3 dark = show(gray(0));
  const auto primary = [&](std::size_t c) { return chromaticity(show(test_ramps[c + 1].on) - dark); };
  return {.red = primary(0), .green = primary(1), .blue = primary(2), .white = chromaticity(show(gray(1)))};
}

white_figures white_figures_of(const vec3& xyz, const vec3& black, const vec2& asked) {
  const vec2 xy = chromaticity(xyz);
  return {xyz, xy, xyz2cct(xy), uv1976_distance(xy, asked), black};
}

void difference_counter::add(double difference, const vec3& drive) {
  if (!std::isfinite(difference)) return;
  sum_ += difference;
  ++count_;
  if (count_ > 1 && difference <= so_far_.max) return;
  so_far_.max = difference;
  so_far_.where = drive;
}

difference_summary difference_counter::result() const {
  difference_summary s = so_far_;
  if (count_ > 0) s.mean = sum_ / count_;
  return s;
}

gray_curve gray_curve_of(const scene& sc, std::vector<double> drive, const std::vector<vec3>& xyz) {
  const chromaticity_table primaries = rgb2c_type(sc.asked.primaries);
  const mat3 light =
      inv(c2rgb_type({.red = primaries.red, .green = primaries.green, .blue = primaries.blue, .white = sc.of.white}));
  gray_curve c;
  for (const vec3& v : xyz) {
    c.cct.push_back(xyz2cct(v));
    c.distance.push_back(uv1976_distance(chromaticity(v), sc.of.white));
    const vec3 rgb = light * (v / v[1]);
    for (std::size_t k = 0; k < 3; ++k) c.balance[k].push_back(100 * rgb[k]);
    c.luminance.push_back(v[1]);
  }
  c.gamma = local_gamma(drive, c.luminance);
  c.drive = std::move(drive);
  return c;
}

job_figures figures_of(const subject& s) {
  const scene sc = make_scene(s);
  const auto before = [&](const vec3& u) { return sc.scaled_before(u); };
  const auto after = [&](const vec3& u) { return sc.after(u); };
  job_figures f;
  f.white_asked = s.white;
  f.white_before = white_figures_of(sc.before(gray(1)), sc.before(gray(0)), s.white);
  f.white_after = white_figures_of(sc.after(gray(1)), sc.after(gray(0)), s.white);
  f.light = light_of(sc);
  f.gray = gray_axis(sc, before, after);
  f.gamut = gamut_of(sc);
  f.corners_before = corner_differences(sc, before);
  f.corners_after = corner_differences(sc, after);
  std::ranges::transform(test_ramps, f.ramps.begin(), [&](const test_ramp& r) { return along(sc, r); });
  for (const test_patch& p : test_patches) f.patches.push_back(judged(sc, p));
  for (const int bits : {8, 10}) f.banding.push_back(banding([&](const vec3& u) { return sc.through(u); }, bits));
  if (s.tables.two_tables) f.clipped.push_back(clipped_entries(s.tables.pre, s.bits));
  f.clipped.push_back(clipped_entries(s.tables.post, s.bits));
  return f;
}

job_figures figures_of(const correction& result, const settings& set) {
  job_figures f = figures_of(subject_of(result, set));
  if (!result.two) return f;
  f.gamut.clips = set.gamut_mapping == gamut_mapping::clip;
  f.gamut.reachable = rgb2c_type(result.two->mod_smon.primaries);
  f.gamut.moved = result.two->distances;
  return f;
}

}  // namespace corvantile
