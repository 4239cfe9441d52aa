// What the figures of measurements mean, in words. One function a subject; each adds at most a few findings.

#include <algorithm>
#include <array>
#include <cmath>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "corvantile/appraisal/check.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {
namespace {

using findings = std::vector<finding>;

constexpr std::array ramp_names{"white", "red", "green", "blue"};

severity graded(double figure, double warning_above, double error_above) {
  if (figure > error_above) return severity::error;
  return figure > warning_above ? severity::warning : severity::note;
}

std::string figures_text(const difference_figures& f) {
  return "mean " + decimal(f.mean, 2) + ", 95 % below " + decimal(f.p95, 2) + ", at most " + decimal(f.max, 2) +
         " (" + std::to_string(f.n) + (f.n == 1 ? " patch)" : " patches)");
}

std::string xy_text(const vec2& xy) { return decimal(xy[0], 4) + ", " + decimal(xy[1], 4); }

std::string drive_text(const vec3& d) {
  return percent(d[0], 1) + " / " + percent(d[1], 1) + " / " + percent(d[2], 1);
}

void judge_additivity(const quality& q, findings& out) {
  const double off = std::abs(q.additivity);
  const std::string figure = "full red, green and blue together give " + percent(std::abs(q.additivity), 1) +
                             (q.additivity < 0 ? " less" : " more") + " light than white";
  // Derived ramps keep the grays right whatever the channels do; measured ones get them wrong by that much.
  const severity level = graded(off, 0.05, q.derived_ramps ? 1e9 : 0.15);
  if (level == severity::note) {
    out.push_back({"additivity", level, figure + ": the channels add up, as the model wants them to", ""});
  } else if (q.derived_ramps) {
    out.push_back(
        {"additivity", level,
         figure + ": the display does not add up its channels. Grays are right, since the ramps were derived "
                  "from them, but colours will be off",
         "turn off dynamic contrast, adaptive brightness, power saving and local dimming, and measure again"});
  } else {
    out.push_back(
        {"additivity", level,
         figure + ": the display does not add up its channels, and grays made from them will be off as much",
         "turn off dynamic contrast, adaptive brightness, power saving and local dimming, and measure again; "
         "or take derived ramps, which keep the grays right"});
  }
}

void judge_repeats(const quality& q, findings& out) {
  if (q.repeat_spread) {
    const severity level = graded(*q.repeat_spread, 0.02, 0.05);
    out.push_back({"repeat-spread", level,
                   "readings of one patch lie up to " + percent(*q.repeat_spread, 2) +
                       " apart: no result can be more certain than that",
                   level == severity::note ? ""
                                           : "let the display warm up for half an hour, keep stray light and screen "
                                             "savers away, and measure again"});
  }
  if (q.dark_spread > 0.001) {
    out.push_back({"dark-spread", severity::warning,
                   "readings at zero drive differ by " + percent(q.dark_spread, 2) +
                       " of white: dark colours will be off, since all ramps begin there",
                   "measure in a dark room, with the instrument flat on the screen"});
  }
  if (const auto& d = q.known.repeated.drift) {
    const severity level = graded(std::abs(d->change), 0.01, 0.05);
    out.push_back(
        {"white-drift", level,
         "white changed by " + percent(d->change, 2) + " from reading " + std::to_string(d->first) + " to " +
             std::to_string(d->last) + " of " + std::to_string(d->of),
         level == severity::note ? "" : "let the display warm up, turn off adaptive brightness, measure again"});
  }
}

void judge_accuracy(const quality& q, findings& out) {
  const accuracy_figures& a = q.accuracy;
  const std::string remeasure =
      "measure again with repeats; if it stays, the display does something that a model of "
      "three independent channels cannot describe";
  if (a.unseen.n == 0) {
    out.push_back(
        {"no-unseen-patches", severity::note,
         "nothing but the ramps was measured, so that nobody can tell how well the model predicts other colours",
         "measure some mixtures and further grays too"});
  } else {
    const severity level = graded(a.unseen.mean, 3, 10);
    out.push_back({"accuracy-unseen", level,
                   "the model predicts patches that it has not seen with CIEDE2000 " + figures_text(a.unseen),
                   level == severity::note ? "" : remeasure});
  }
  if (a.near_gray.n > 0) {
    const severity level = graded(a.near_gray.mean, 2, 6);
    out.push_back({"accuracy-near-gray", level,
                   "of these, near gray: CIEDE2000 " + figures_text(a.near_gray) + ", where the eye is most critical",
                   level == severity::note ? "" : remeasure});
  }
  const severity level = graded(a.white_ramp.mean, 3, 10);
  out.push_back(
      {"accuracy-white-ramp", level, "along the gray ramp: CIEDE2000 " + figures_text(a.white_ramp),
       level == severity::note || q.derived_ramps ? "" : "try derived ramps, which are made from the grays"});
  if (a.patches.empty()) return;
  std::string worst = "the worst predictions, by drive of red / green / blue: ";
  for (const prediction& p : std::span(a.patches).first(std::min<std::size_t>(3, a.patches.size()))) {
    worst += (&p == a.patches.data() ? "" : "; ") + drive_text(p.drive) + " with " + decimal(p.difference, 2);
  }
  out.push_back({"worst-patches", severity::note, worst, ""});
}

void judge_ramps(const quality& q, findings& out) {
  const double noise = std::max({q.noise.dark, q.noise.middle, q.noise.bright});
  const severity level = graded(noise, 0.5, 2);
  out.push_back({"noise", level,
                 "levels scatter about a smooth curve by " + decimal(q.noise.dark, 2) + " L* in the dark, " +
                     decimal(q.noise.middle, 2) + " in the middle and " + decimal(q.noise.bright, 2) +
                     " in the bright",
                 level == severity::note ? "" : "measure with a longer integration time, or more than once"});

  if (!q.derived_ramps) {  // derived ones have one chromaticity by construction
    const auto farthest = static_cast<std::size_t>(
        std::ranges::max_element(q.wandering.begin() + 1, q.wandering.end()) - q.wandering.begin());
    const severity wandering = graded(q.wandering[farthest], 0.05, 1e9);
    out.push_back(
        {"chromaticity-wander", wandering,
         std::string("the channels keep their colour along their ramps within ") + decimal(q.wandering[farthest], 4) +
             " in u'v', " + ramp_names[farthest] + " wanders most",
         wandering == severity::note ? "" : "look for stray light, and for colour processing in the display"});
  }
  out.push_back(
      {"gray-wander", severity::note,
       "the colour of gray wanders by " + decimal(q.wandering[0], 4) + " in u'v' between white and 5 % of its light",
       ""});

  if (q.numsegs < 3) {
    out.push_back({"numsegs", severity::warning, "the levels carry no fit: between them the curves are guesses",
                   "measure more levels, 17 at least"});
  } else {
    out.push_back({"numsegs", severity::note,
                   "the levels carry up to " + std::to_string(q.numsegs) + " pieces of a curve (numsegs)", ""});
  }
}

void judge_dark(const quality& q, findings& out) {
  if (!(q.dark[1] > 0)) {
    out.push_back({"zero-dark", severity::warning,
                   "the dark reads " + (q.dark[1] == 0 ? std::string("exactly 0") : "below 0") +
                       ": the file was processed (black point compensation), or the instrument does "
                       "not see so little light; dark colours are not known",
                   "use the readings as they were before any compensation"});
    return;
  }
  const severity level = q.contrast < 100 ? severity::warning : severity::note;
  out.push_back({"contrast", level,
                 "contrast is " + decimal(q.contrast, 0) + " to 1 (white " + decimal(q.white[1], 2) + ", dark " +
                     decimal(q.dark[1], 4) + ")",
                 level == severity::note ? "" : "measure in a dark room: this looks like stray light"});
}

void judge_primaries(const quality& q, findings& out) {
  const struct {
    std::string_view id, what;
    std::size_t channel, component;
  } rows[] = {{"red-without-z", "Z of red", 0, 2}, {"blue-without-x", "X of blue", 2, 0}};
  for (const auto& r : rows) {
    const double share = q.primaries[r.channel][r.component] / q.white[r.component];
    if (share > 1e-4) continue;
    out.push_back({std::string(r.id), severity::warning,
                   std::string(r.what) +
                       " is not above that of the dark: its curve over luminance cannot be known, a straight line "
                       "stands in for it",
                   "check that the readings are X, Y, Z as measured, without black point compensation or rounding"});
  }
}

void judge_source(const quality& q, findings& out) {
  if (q.known.calibration) {
    out.push_back(
        {"calibration-in-effect", severity::note,
         "the display was measured through a video calibration: this is not its native response",
         "keep that calibration loaded with what leaves it in force; what replaces it (profile with vcgt, .cal, "
         "one-dimensional .cube) must contain it"});
  }
  for (const std::string& note : q.known.notes) out.push_back({"source", severity::note, note, ""});
  if (q.known.absolute == false) {
    out.push_back(
        {"relative-units", severity::note, "luminances are relative: how bright the display is, is not known", ""});
  }
}

void describe_display(const quality& q, findings& out) {
  out.push_back({"native-white", severity::note,
                 "white is at x, y = " + xy_text(q.white_xy) + ": " + decimal(q.white_cct, 0) + " K, " +
                     decimal(q.white_from_d65, 4) + " from D65 in u'v'",
                 ""});
  std::string text = "the primaries cover ";
  for (const gamut_comparison& g : q.gamut) {
    text += (&g == q.gamut.data() ? "" : ", ") + percent(g.coverage, 1) + " of " + std::string(g.name) + " (area " +
            percent(g.area, 1) + ")";
  }
  out.push_back({"native-gamut", severity::note, text + ", in u'v'", ""});
}

}  // namespace

std::vector<finding> findings_of(const quality& q) {
  findings out;
  for (const auto judge : {judge_additivity, judge_repeats, judge_accuracy, judge_ramps, judge_dark, judge_primaries,
                           judge_source, describe_display}) {
    judge(q, out);
  }
  merge_findings(out, q.warnings);
  return out;
}

}  // namespace corvantile
