#include "corvantile/appraisal/verdict.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>
#include <iterator>
#include <utility>

#include "corvantile/appraisal/gamut.hpp"
#include "corvantile/appraisal/test_patches.hpp"
#include "corvantile/colour/chromaticity.hpp"
#include "corvantile/numerics/halton.hpp"

namespace corvantile {
namespace {

constexpr int largest_code = 255;
constexpr std::size_t colours_over_the_cube = 300;
constexpr std::size_t enough_patches = 5;  // to speak of their mean

// ---- The test set ----

// The drive for a colour a share of the way from the target's white to its corner `on`, in u'v'.
vec3 desaturated(const asked_display& asked, const vec3& on, double share) {
  const vec3 corner = asked.primaries * on;
  const vec2 white = uv_of(asked.primaries * gray(1)), full = uv_of(corner);
  const vec2 uv = white + share * (full - white);
  const vec2 xy = uv2xy_vec({{uv[0], uv[1] / 1.5}});
  return asked_drive(asked, xy2xyz(xy, corner[1]) + asked.dark);
}

void add_sweeps(const scene& sc, std::vector<judged_patch>& set) {
  for (const test_ramp& hue : test_ramps) {
    if (is_gray(hue.on)) continue;
    for (const int percent : {25, 50, 75, 100}) {
      const vec3 drive = percent == 100 ? hue.on : desaturated(sc.asked, hue.on, percent / 100.0);
      set.push_back({patch_kind::sweep, fmt::format("{} {} %", hue.name, percent), drive});
    }
  }
}

// ---- What the model leaves ----

bool is_exact_gray(const vec3& d) {
  const auto [low, high] = std::ranges::minmax(d.v);
  return high - low <= 1e-3;
}

uncertainty uncertainty_of(const difference_figures& f) { return {f.mean, f.p95}; }

// Grays are judged by grays: those beside the ramps, or the gray ramp if no fit has seen it, or patches near gray.
std::optional<uncertainty> unseen_grays(const accuracy_figures& a, bool derived_ramps) {
  std::vector<double> grays;
  for (const prediction& p : a.patches)
    if (is_exact_gray(p.drive)) grays.push_back(p.difference);
  if (grays.size() >= enough_patches) return uncertainty_of(summarize(std::move(grays)));
  if (!derived_ramps && a.white_ramp.n >= enough_patches) return uncertainty_of(a.white_ramp);
  if (a.near_gray.n >= enough_patches) return uncertainty_of(a.near_gray);
  return std::nullopt;
}

std::optional<uncertainty> unseen_colours(const accuracy_figures& a) {
  return a.unseen.n >= enough_patches ? std::optional(uncertainty_of(a.unseen)) : std::nullopt;
}

// ---- Groups ----

template <class Of>
std::vector<double> collected(const std::vector<judged_patch>& patches, bool gray, const Of& of) {
  std::vector<double> values;
  for (const judged_patch& p : patches)
    if ((p.kind == patch_kind::gray) == gray) values.push_back(of(p));
  return values;
}

group_verdict judge_group(const std::vector<judged_patch>& patches, bool gray,
                          const std::optional<uncertainty>& unseen) {
  const uncertainty u = unseen.value_or(uncertainty{});
  group_verdict g;
  g.unseen = unseen;
  g.before = summarize(collected(patches, gray, [](const judged_patch& p) { return p.before; }));
  g.own = summarize(collected(patches, gray, [](const judged_patch& p) { return p.after; }));
  g.expected =
      summarize(collected(patches, gray, [&](const judged_patch& p) { return std::hypot(p.after, u.mean); })).mean;
  g.expected_p95 =
      summarize(collected(patches, gray, [&](const judged_patch& p) { return std::hypot(p.after, u.p95); })).p95;
  const double gain = g.before.mean - g.own.mean;
  if (gain > u.mean / 2) g.against_before = trend::better;
  if (gain < -u.mean) g.against_before = trend::worse;
  return g;
}

// ---- The gamut ----

std::array<vec2, 3> own_triangle(const scene& sc) {
  const vec3 dark = sc.before(gray(0));
  const auto corner = [&](std::size_t c) { return uv_of(sc.before(test_ramps[c + 1].on) - dark); };
  return {corner(0), corner(1), corner(2)};
}

std::array<vec2, 3> corrected_triangle(const scene& sc) {
  const vec3 dark = sc.after(gray(0));
  const auto corner = [&](std::size_t c) { return uv_of(sc.after(test_ramps[c + 1].on) - dark); };
  return {corner(0), corner(1), corner(2)};
}

void judge_gamut(const scene& sc, verdict& v) {
  const auto& p = sc.of.primaries;
  const std::array<vec2, 3> wanted =
      p ? std::array<vec2, 3>{xy2uv1976((*p)[0]), xy2uv1976((*p)[1]), xy2uv1976((*p)[2])} : primaries_in_uv1976(srgb);
  v.coverage_before = coverage(own_triangle(sc), wanted);
  // Behind a clip, every colour that both have is shown: the corners alone would say less.
  v.coverage_after = sc.of.tables.clips ? v.coverage_before : coverage(corrected_triangle(sc), wanted);
}

}  // namespace

std::vector<judged_patch> test_set(const scene& sc) {
  std::vector<judged_patch> set;
  for (int code = 0; code <= largest_code; ++code) set.push_back({patch_kind::gray, {}, gray(code / 255.0)});
  for (const test_patch& p : test_patches)
    set.push_back({patch_kind::chart, p.name, {{p.code[0] / 255.0, p.code[1] / 255.0, p.code[2] / 255.0}}});
  add_sweeps(sc, set);
  for (std::size_t i = 1; i <= colours_over_the_cube; ++i) set.push_back({patch_kind::cube, {}, halton(i)});
  for (judged_patch& p : set) {
    p.before = sc.difference(p.drive, sc.scaled_before(p.drive));
    p.after = sc.difference(p.drive, sc.after(p.drive));
  }
  return set;
}

bool verdict::better() const {
  const auto is = [&](trend t) { return gray.against_before == t || colours.against_before == t; };
  return is(trend::better) && !is(trend::worse);
}

verdict judge(const subject& s, const accuracy_figures& accuracy, bool derived_ramps) {
  const scene sc = make_scene(s);
  verdict v;
  v.patches = test_set(sc);
  v.gray = judge_group(v.patches, true, unseen_grays(accuracy, derived_ramps));
  v.colours = judge_group(v.patches, false, unseen_colours(accuracy));
  judge_gamut(sc, v);
  v.luminance_kept = sc.after(gray(1))[1] / sc.before(gray(1))[1];
  return v;
}

}  // namespace corvantile
