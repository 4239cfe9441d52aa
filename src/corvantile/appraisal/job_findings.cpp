#include "corvantile/appraisal/job_findings.hpp"

#include <string>

#include "corvantile/appraisal/gamut.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {
namespace {

// Distances in CIE 1976 u'v': what an observer notices side by side, and what nobody overlooks.
constexpr double just_seen = 0.004, obvious = 0.02;

std::string xy_text(const vec2& xy) { return decimal(xy[0], 4) + ", " + decimal(xy[1], 4); }

void judge_light(std::vector<finding>& out, const job_figures& f) {
  const double before = f.white_before.xyz[1], after = f.white_after.xyz[1], lost = 1 - after / before;
  const bool much = lost > 0.5;
  out.push_back(
      {"luminance-loss", much ? severity::warning : severity::note,
       "white loses " + percent(lost, 1) + " of its luminance (" + decimal(before, 2) + " to " + decimal(after, 2) +
           ")",
       much ? "bring the display's own white nearer to the target with its controls, and measure again" : ""});
}

void judge_miss(std::vector<finding>& out, const char* id, const std::string& what, const vec2& asked,
                const vec2& shown) {
  const double miss = uv1976_distance(asked, shown);
  if (!(miss > just_seen)) return;
  const bool far = miss > obvious;
  out.push_back({id, far ? severity::warning : severity::note,
                 what + " ends at x, y = " + xy_text(shown) + " instead of " + xy_text(asked) + ", " +
                     decimal(miss, 4) + " away in u'v'",
                 far ? "the display does not reach that far: choose a target within its gamut" : ""});
}

void judge_colours(std::vector<finding>& out, const job_figures& f) {
  if (const auto& asked = f.gamut.asked) {
    judge_miss(out, "primary-out-of-reach", "red", asked->red, f.gamut.after.red);
    judge_miss(out, "primary-out-of-reach", "green", asked->green, f.gamut.after.green);
    judge_miss(out, "primary-out-of-reach", "blue", asked->blue, f.gamut.after.blue);
  }
  judge_miss(out, "white-out-of-reach", "white", f.white_asked, f.white_after.xy);
  const difference_summary& grays = f.gray.difference_after;
  const bool far = grays.mean > 3;
  out.push_back({"gray-differences", far ? severity::warning : severity::note,
                 "grays are predicted to be off their target by CIEDE2000 " + decimal(grays.mean, 2) +
                     " on average and " + decimal(grays.max, 2) + " at most",
                 far ? "look at the grays in the report before loading these tables" : ""});
}

void judge_settings(std::vector<finding>& out, const settings& set, const job_figures& f) {
  if (!solves_two_tables(set.mode)) return;
  if (matches_gray(set.mode) && set.temp < 0 && !set.white) {
    const double apart = uv1976_distance(f.white_asked, set.xytable.white);
    out.push_back({"own-white", apart > just_seen ? severity::warning : severity::note,
                   "temp is left at its default: grays take the display's own white, " + decimal(apart, 4) +
                       " from the target's in u'v'",
                   apart > just_seen ? "set white to the target's x, y, or leave the grays alone (CV2)" : ""});
  }
  if (set.tlen <= 256) {
    out.push_back({"short-tables", severity::note,
                   "tables of " + std::to_string(set.tlen) +
                       " rows are read by straight lines: dark colours between their rows will be off",
                   "set tlen=4096 if the device can hold it"});
  }
}

}  // namespace

std::vector<finding> job_findings(const correction& result, const settings& set, const job_figures& figures) {
  std::vector<finding> out;
  judge_light(out, figures);
  judge_colours(out, figures);
  judge_settings(out, set, figures);
  merge_findings(out, result.warnings);
  return out;
}

}  // namespace corvantile
