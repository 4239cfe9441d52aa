// What figures mean, in words. One function for each subject; each adds a few findings at most.

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "corvantile/appraisal/check.hpp"
#include "corvantile/appraisal/job_figures.hpp"

namespace corvantile {
namespace {

using findings = std::vector<finding>;

severity graded(double figure, double warning_above, double error_above = 1e9) {
  if (figure > error_above) return severity::error;
  return figure > warning_above ? severity::warning : severity::note;
}

// A note says what is good, and needs no action.
void add(findings& out, const char* id, severity level, std::string message, std::string action) {
  if (level == severity::note) action.clear();
  out.push_back({id, level, std::move(message), std::move(action)});
}

void add_note(findings& out, const char* id, std::string message, std::string action = {}) {
  out.push_back({id, severity::note, std::move(message), std::move(action)});
}

std::string percent(double fraction, int decimals) { return fmt::format("{:.{}f} %", 100 * fraction, decimals); }

std::string figures_text(const difference_figures& f) {
  return fmt::format("mean {:.2f}, 95 % below {:.2f}, at most {:.2f} ({} {})", f.mean, f.p95, f.max, f.n,
                     f.n == 1 ? "patch" : "patches");
}

std::string xy_text(const vec2& xy) { return fmt::format("{:.4f}, {:.4f}", xy[0], xy[1]); }

// ---- Measurements ----

void judge_additivity(const quality& q, findings& out) {
  constexpr const char* remeasure =
      "turn off dynamic contrast, adaptive brightness, power saving and local dimming, and measure again";
  const double off = std::abs(q.additivity);
  const std::string figure = fmt::format("full red, green and blue together give {} {} light than white",
                                         percent(off, 1), q.additivity < 0 ? "less" : "more");
  // With derived ramps the grays are right anyway. With measured ones, this is their error.
  const severity level = q.derived_ramps ? graded(off, 0.05) : graded(off, 0.05, 0.15);
  if (level == severity::note) {
    add_note(out, "additivity", figure + ": the channels add up, as the model assumes");
  } else if (q.derived_ramps) {
    add(out, "additivity", level,
        figure +
            ": the display's channels do not add up. Grays are right, because the ramps were derived from them, "
            "but colours will be off",
        remeasure);
  } else {
    add(out, "additivity", level,
        figure + ": the display's channels do not add up, and grays made from them will be off as much",
        fmt::format("{}; or take derived ramps, which keep the grays right", remeasure));
  }
}

void judge_repeats(const quality& q, findings& out) {
  if (q.repeat_spread) {
    add(out, "repeat-spread", graded(*q.repeat_spread, 0.02, 0.05),
        fmt::format("repeated readings of a patch differ by up to {}: no result can be more certain than that",
                    percent(*q.repeat_spread, 2)),
        "let the display warm up for half an hour, keep stray light and screen savers away, and measure again");
  }
  if (q.dark_spread > 0.001) {
    add(out, "dark-spread", severity::warning,
        fmt::format("readings at zero drive differ by {} of white: dark colours will be off, because all ramps begin "
                    "there",
                    percent(q.dark_spread, 2)),
        "measure in a dark room, with the instrument flat on the screen");
  }
  if (const auto& d = q.known.repeated.drift) {
    add(out, "white-drift", graded(std::abs(d->change), 0.01, 0.05),
        fmt::format("white changed by {} from reading {} to {} of {}", percent(d->change, 2), d->first, d->last,
                    d->of),
        "let the display warm up, turn off adaptive brightness, measure again");
  }
}

void judge_accuracy(const quality& q, findings& out) {
  const accuracy_figures& a = q.accuracy;
  constexpr const char* remeasure =
      "measure again with repeats; if it stays, a model of three independent channels cannot describe this display";
  if (a.unseen.n == 0) {
    add_note(out, "no-unseen-patches",
             "only the ramps were measured, so nobody can tell how well the model predicts other colours",
             "measure some mixtures and more grays too");
  } else {
    add(out, "accuracy-unseen", graded(a.unseen.mean, 3, 10),
        "the model predicts patches that it was not fitted to with CIEDE2000 " + figures_text(a.unseen), remeasure);
  }
  if (a.near_gray.n > 0) {
    add(out, "accuracy-near-gray", graded(a.near_gray.mean, 2, 6),
        fmt::format("of these, near gray, where the eye is most critical: CIEDE2000 {}", figures_text(a.near_gray)),
        remeasure);
  }
  add(out, "accuracy-white-ramp", graded(a.white_ramp.mean, 3, 10),
      "along the gray ramp: CIEDE2000 " + figures_text(a.white_ramp),
      q.derived_ramps ? "" : "try derived ramps, which are made from the grays");
  if (a.patches.empty()) return;
  std::string worst;
  for (const prediction& p : std::span(a.patches).first(std::min<std::size_t>(3, a.patches.size()))) {
    worst += fmt::format("{}{} / {} / {} with {:.2f}", worst.empty() ? "" : "; ", percent(p.drive[0], 1),
                         percent(p.drive[1], 1), percent(p.drive[2], 1), p.difference);
  }
  add_note(out, "worst-patches", "the worst predictions, by drive of red / green / blue: " + worst);
}

void judge_ramps(const quality& q, findings& out) {
  const auto& [dark, middle, bright] = q.noise;
  add(out, "noise", graded(std::max({dark, middle, bright}), 0.5, 2),
      fmt::format("levels scatter about a smooth curve by {:.2f} L* in the dark, {:.2f} in the middle and {:.2f} in "
                  "the bright",
                  dark, middle, bright),
      "measure with a longer integration time, or more than once");
  if (!q.derived_ramps) {  // derived ramps have one chromaticity by definition
    constexpr std::array names{"white", "red", "green", "blue"};
    const auto farthest = static_cast<std::size_t>(
        std::ranges::max_element(q.wandering.begin() + 1, q.wandering.end()) - q.wandering.begin());
    add(out, "chromaticity-wander", graded(q.wandering[farthest], 0.05),
        fmt::format("the channels keep their colour along their ramps within {:.4f} in u'v', {} wanders most",
                    q.wandering[farthest], names[farthest]),
        "look for stray light, and for colour processing in the display");
  }
  add_note(
      out, "gray-wander",
      fmt::format("the colour of gray wanders by {:.4f} in u'v' between white and 5 % of its light", q.wandering[0]));
  if (q.numsegs < 3) {
    add(out, "numsegs", severity::warning, "the levels are too few for a fit: between them the curves are guesses",
        "measure at least 17 levels");
  } else {
    add_note(out, "numsegs", fmt::format("the levels suffice for up to {} pieces of a curve (numsegs)", q.numsegs));
  }
}

void judge_dark(const quality& q, findings& out) {
  if (!(q.dark[1] > 0)) {
    add(out, "zero-dark", severity::warning,
        fmt::format(
            "the dark reads {} 0: the file was processed (black point compensation), or the instrument cannot "
            "see so little light; dark colours are not known",
            q.dark[1] == 0 ? "exactly" : "below"),
        "use the readings as they were before any compensation");
    return;
  }
  add(out, "contrast", q.contrast < 100 ? severity::warning : severity::note,
      fmt::format("contrast is {:.0f} to 1 (white {:.2f}, dark {:.4f})", q.contrast, q.white[1], q.dark[1]),
      "measure in a dark room: this looks like stray light");
}

void judge_primaries(const quality& q, findings& out) {
  const struct {
    const char *id, *what;
    std::size_t channel, component;
  } rows[] = {{"red-without-z", "Z of red", 0, 2}, {"blue-without-x", "X of blue", 2, 0}};
  for (const auto& r : rows) {
    if (q.primaries[r.channel][r.component] / q.white[r.component] > 1e-4) continue;
    add(out, r.id, severity::warning,
        fmt::format("{} is not above that of the dark: its curve over luminance is not known, and a straight line "
                    "takes its place",
                    r.what),
        "check that the readings are X, Y, Z as measured, without black point compensation or rounding");
  }
}

void judge_source(const quality& q, findings& out) {
  if (q.known.calibration) {
    add_note(out, "calibration-in-effect",
             "the display was measured through a video calibration: this is not its native response",
             "keep that calibration loaded with formats that leave it in force; those that replace it (profile with "
             "vcgt, .cal, one-dimensional .cube) must contain it");
  }
  for (const std::string& note : q.known.notes) add_note(out, "source", note);
  if (q.known.absolute == false) {
    add_note(out, "relative-units", "luminances are relative: the brightness of the display is not known");
  }
}

void describe_display(const quality& q, findings& out) {
  add_note(out, "native-white",
           fmt::format("white is at x, y = {}: {:.0f} K, {:.4f} from D65 in u'v'", xy_text(q.white_xy), q.white_cct,
                       q.white_from_d65));
  std::string covered;
  for (const gamut_comparison& g : q.gamut) {
    covered += fmt::format("{}{} of {} (area {})", covered.empty() ? "" : ", ", percent(g.coverage, 1), g.name,
                           percent(g.area, 1));
  }
  add_note(out, "native-gamut", fmt::format("the primaries cover {}, in u'v'", covered));
}

// ---- Solved jobs ----

// Distances in CIE 1976 u'v': what an observer notices side by side, and what nobody overlooks.
constexpr double just_seen = 0.004, obvious = 0.02;

void judge_light(const job_figures& f, findings& out) {
  const double before = f.white_before.xyz[1], after = f.white_after.xyz[1], lost = 1 - after / before;
  add(out, "luminance-loss", graded(lost, 0.5),
      fmt::format("white loses {} of its luminance ({:.2f} to {:.2f})", percent(lost, 1), before, after),
      "bring the display's own white nearer to the target with its controls, and measure again");
}

void judge_miss(findings& out, const char* id, const char* what, const vec2& asked, const vec2& shown) {
  const double miss = uv1976_distance(asked, shown);
  if (!(miss > just_seen)) return;
  add(out, id, graded(miss, obvious),
      fmt::format("{} ends at x, y = {} instead of {}, {:.4f} away in u'v'", what, xy_text(shown), xy_text(asked),
                  miss),
      "the display does not reach that far: choose a target within its gamut");
}

void judge_colours(const job_figures& f, findings& out) {
  if (const auto& asked = f.gamut.asked) {
    judge_miss(out, "primary-out-of-reach", "red", asked->red, f.gamut.after.red);
    judge_miss(out, "primary-out-of-reach", "green", asked->green, f.gamut.after.green);
    judge_miss(out, "primary-out-of-reach", "blue", asked->blue, f.gamut.after.blue);
  }
  judge_miss(out, "white-out-of-reach", "white", f.white_asked, f.white_after.xy);
  const difference_summary& grays = f.gray.difference_after;
  add(out, "gray-differences", graded(grays.mean, 3),
      fmt::format("grays are predicted to be off their target by CIEDE2000 {:.2f} on average and {:.2f} at most",
                  grays.mean, grays.max),
      "look at the grays in the report before loading these tables");
}

void judge_settings(const settings& set, const job_figures& f, findings& out) {
  if (!solves_two_tables(set.mode)) return;
  if (matches_gray(set.mode) && set.temp < 0 && !set.white) {
    const double apart = uv1976_distance(f.white_asked, set.xytable.white);
    add(out, "own-white", graded(apart, just_seen),
        fmt::format("temp is left at its default: grays take the display's own white, {:.4f} from the target's in "
                    "u'v'",
                    apart),
        "set white to the target's x, y, or leave the grays alone (CV2)");
  }
  if (set.tlen <= 256) {
    add_note(
        out, "short-tables",
        fmt::format("tables of {} rows have straight lines between them: dark colours there will be off", set.tlen),
        "set tlen=4096 if the device can hold it");
  }
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

std::vector<finding> job_findings(const correction& result, const settings& set, const job_figures& figures) {
  findings out;
  judge_light(figures, out);
  judge_colours(figures, out);
  judge_settings(set, figures, out);
  merge_findings(out, result.warnings);
  return out;
}

}  // namespace corvantile
