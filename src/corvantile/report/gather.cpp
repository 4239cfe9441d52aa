#include "corvantile/report/gather.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>
#include <string_view>
#include <utility>

#include "corvantile/appraisal/gamut.hpp"
#include "corvantile/appraisal/outcome.hpp"
#include "corvantile/colour/chromaticity.hpp"
#include "corvantile/colour/color_metrics.hpp"
#include "corvantile/colour/nonpar_monitor.hpp"
#include "corvantile/report/banding.hpp"
#include "corvantile/report/scene.hpp"
#include "corvantile/report/svg.hpp"
#include "corvantile/report/test_patches.hpp"

namespace corvantile {
namespace {

constexpr int largest_code = 255;
constexpr int ramp_step = 5;  // codes
constexpr std::size_t program_samples = 200;
constexpr double moved_visibly = 0.002;  // u'v'

// ---- The gray axis ----

// Drives that 8 bits can say: all of the dark ones, then every other.
std::vector<double> gray_drives() {
  std::vector<double> d;
  for (int code = 0; code <= largest_code; code += code < 39 ? 1 : 2) d.push_back(code / 255.0);
  return d;
}

gray_curve curve_of(const scene& sc, const shown_by& show) {
  const std::vector<double> drive = gray_drives();
  std::vector<vec3> xyz(drive.size());
  std::ranges::transform(drive, xyz.begin(), [&](double s) { return show(gray(s)); });
  return curve_of(sc, drive, xyz);
}

// The lowest and highest colour temperature within the tolerance about the white asked for.
void temperature_band(gray_record& g, const vec2& white) {
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

gray_record gray_axis(const scene& sc) {
  gray_record g;
  g.asked = curve_of(sc, [&](const vec3& u) { return asked_xyz(sc.asked, u); });
  g.before = curve_of(sc, [&](const vec3& u) { return sc.before(u); });
  g.after = curve_of(sc, [&](const vec3& u) { return sc.after(u); });
  temperature_band(g, sc.source.white);
  return g;
}

// ---- Differences ----

difference_summary gray_summary(const scene& sc, const shown_by& show) {
  summary_of all;
  for (int code = 0; code <= largest_code; ++code) {
    const vec3 u = gray(code / 255.0);
    all.add(sc.difference(u, show(u)), drive_text(u[0]));
  }
  return all.result();
}

difference_summary corner_summary(const scene& sc, const shown_by& show) {
  summary_of all;
  for (std::size_t i = 1; i < mixtures.size(); ++i)
    all.add(sc.difference(mixtures[i].on, show(mixtures[i].on)), mixtures[i].name);
  return all.result();
}

difference_record differences(const scene& sc) {
  difference_record d;
  for (std::size_t i = 0; i < mixtures.size(); ++i) {
    ramp_record r;
    r.name = mixtures[i].name;
    for (int code = 0; code <= largest_code; code += ramp_step) {
      const vec3 u = code / 255.0 * mixtures[i].on;
      r.drive.push_back(code / 255.0);
      r.before.push_back(sc.difference(u, sc.scaled_before(u)));
      r.after.push_back(sc.difference(u, sc.after(u)));
    }
    if (sc.source.program_maxima) r.program_max = (*sc.source.program_maxima)[i];
    d.ramps.push_back(std::move(r));
  }
  for (const test_patch& p : test_patches) {
    const vec3 u{{p.code[0] / 255.0, p.code[1] / 255.0, p.code[2] / 255.0}};
    const vec3 shown = sc.after(u);
    d.patches.push_back(
        {p.name, u, asked_drive(sc.asked, shown), sc.difference(u, sc.scaled_before(u)), sc.difference(u, shown)});
  }
  return d;
}

// ---- Gamut ----

gamut_corners corners_of(const shown_by& show) {
  gamut_corners c;
  for (std::size_t k = 0; k < 3; ++k) c.primaries_uv[k] = uv_of(show(mixtures[k + 1].on) - show(gray(0)));
  c.white_uv = uv_of(show(gray(1)));
  return c;
}

triangle in_uv(const triangle& xy) { return {xy2uv1976(xy[0]), xy2uv1976(xy[1]), xy2uv1976(xy[2])}; }

gamut_record gamut(const scene& sc) {
  gamut_record g;
  g.before = corners_of([&](const vec3& u) { return sc.before(u); });
  g.after = corners_of([&](const vec3& u) { return sc.after(u); });
  const auto add = [&](std::string_view name, const triangle& uv) {
    g.coverage.push_back(
        {std::string(name), coverage(g.before.primaries_uv, uv), coverage(g.after.primaries_uv, uv)});
  };
  if (sc.source.primaries) {
    g.asked = gamut_corners{in_uv(*sc.source.primaries), xy2uv1976(sc.source.white)};
    add("asked for", g.asked->primaries_uv);
  }
  for (const standard_gamut& s : standard_gamuts) add(s.name, primaries_in_uv1976(s.xy));
  return g;
}

// ---- Verdict ----

std::vector<loss_record> losses(const scene& sc) {
  const double before = sc.before(gray(1))[1];
  const double top = ramptop_xyz(sc.source.display, sc.source.white).xyz[1];
  const double limit = 1 / factors_at(sc.source.factors, 1)[1];  // what the display was measured to fall short by
  const double rest = sc.after(gray(1))[1] / (top * sc.source.lumfrac * limit);
  std::vector<loss_record> l{{"this white", top / before}};
  if (sc.source.lumfrac != 1) l.push_back({"lumfrac", sc.source.lumfrac});
  if (std::abs(limit - 1) > 0.002) l.push_back({"display's limit", limit});
  if (std::abs(rest - 1) > 0.002) l.push_back({sc.source.tables.two_tables ? "head-room" : "gray table", rest});
  return l;
}

std::string moved_primaries(const gamut_record& g) {
  if (!g.asked) return "Red, green and blue stay as they are.";
  std::string moved;
  for (std::size_t c = 0; c < 3; ++c) {
    const double d = apart(g.asked->primaries_uv[c], g.after.primaries_uv[c]);
    if (!(d >= moved_visibly)) continue;
    moved += (moved.empty() ? "" : ", ") + std::string(mixtures[c + 1].name) + " by " + svg::number(d, 3);
  }
  return moved.empty() ? "All three primaries are reached." : "Out of reach and moved in u'v': " + moved + ".";
}

// A difference in words; small ones without digits that nobody sees.
std::string difference_text(double d) { return d < 0.05 ? "less than 0.1" : svg::number(d); }

std::string sentence(const verdict_record& v, const gamut_record& g) {
  return std::string("Grays should follow the target ") + how_close(v.gray_after) + ", with a mean difference of " +
         difference_text(v.gray_after.mean) + " where it was " + difference_text(v.gray_before.mean) + ", at " +
         svg::number(100 * v.after.luminance / v.before.luminance, 0) + "\u00a0% of the luminance. " +
         moved_primaries(g);
}

verdict_record verdict(const scene& sc, const gamut_record& g) {
  const auto before = [&](const vec3& u) { return sc.scaled_before(u); };
  const auto after = [&](const vec3& u) { return sc.after(u); };
  const vec2& white = sc.source.white;
  verdict_record v;
  v.asked.xy = white;
  v.asked.cct = xyz2cct(white);
  v.before = white_of(sc.before(gray(1)), sc.before(gray(0))[1], white);
  v.after = white_of(sc.after(gray(1)), sc.after(gray(0))[1], white);
  v.losses = losses(sc);
  v.gray_before = gray_summary(sc, before);
  v.gray_after = gray_summary(sc, after);
  v.corners_before = corner_summary(sc, before);
  v.corners_after = corner_summary(sc, after);
  v.sentence = sentence(v, g);
  return v;
}

// ---- Tables and trust ----

table_record tables(const scene& sc) {
  const report_source& s = sc.source;
  table_record t;
  if (s.tables.two_tables) {
    t.curves.push_back({"Pre-table", "drive", "linear light", s.tables.pre});
    t.curves.push_back({"Post-table", "linear light", "device drive", s.tables.post});
    t.mix = s.tables.mix;
  } else {
    t.curves.push_back({"Gray table", "drive", "device drive", s.tables.post});
  }
  t.bits = s.bits;
  t.clipped.reserve(t.curves.size());
  for (const table_curve& c : t.curves) t.clipped.push_back(clipped(c.name, c.rows, s.bits));
  for (const int bits : {8, 10}) t.banding.push_back(banding([&](const vec3& u) { return sc.through(u); }, bits));
  return t;
}

trust_record trust(const scene& sc) {
  const monitor& m = sc.source.display;
  trust_record t;
  for (std::size_t i = m.rgb.rows() - static_cast<std::size_t>(m.nextra); i < m.rgb.rows(); ++i) {
    const vec3 drive = row3(m.rgb, i);
    t.unseen.push_back({drive, difference_of(row3(m.xyz, i), sc.before(drive), m.whitepoint)});
  }
  t.additivity = (m.Ymax[0] + m.Ymax[1] + m.Ymax[2]) / (m.whitepoint[1] - m.darklight[1]);
  return t;
}

}  // namespace

report_source source_of(const correction& result, const settings& set) {
  report_source s{.display = result.measured,
                  .tables = tables_of(result),
                  .bits = set.nbits,
                  .white = outcome_of(result, set).white_wanted,
                  .primaries = {},
                  .tone = interpolator(result.tone)};
  if (matches_gray(result.mode)) s.dark_below = set.alpha;
  s.factors = result.factors;
  if (result.two) {
    s.primaries = {set.xytable.red, set.xytable.green, set.xytable.blue};
    s.lumfrac = set.lumfrac;
    s.program_maxima = program_ramp_maxima(result.two->cmon, result.two->ref_smon);
  }
  return s;
}

report_data gather_report(const report_source& source) {
  const scene sc = make_scene(source);
  report_data data;
  data.gray = gray_axis(sc);
  data.gamut = gamut(sc);
  data.verdict = verdict(sc, data.gamut);
  data.differences = differences(sc);
  data.tables = tables(sc);
  data.trust = trust(sc);
  return data;
}

std::array<double, 7> program_ramp_maxima(const monitor& corrected, const synthetic_monitor& target) {
  const vec3 white = syn_whitepoint(target);
  std::array<double, 7> maxima;
  for (std::size_t i = 0; i < mixtures.size(); ++i) {
    matrix inputs(program_samples, 3);
    for (std::size_t j = 0; j < program_samples; ++j) {
      set_row3(inputs, j, static_cast<double>(j) / static_cast<double>(program_samples - 1) * mixtures[i].on);
    }
    const matrix shown = xyz2lab_mat(inp2out_mat(corrected, inputs), white);
    const matrix wanted = xyz2lab_mat(syn_inp2out_mat(target, inputs), white);
    maxima[i] = unknown;
    for (const double d : deltae2000_mat(wanted, shown)) maxima[i] = std::fmax(maxima[i], d);
  }
  return maxima;
}

}  // namespace corvantile
