#include "corvantile/appraisal/plan.hpp"

#include <string>

#include "corvantile/appraisal/gamut.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {
namespace {

// Distances in CIE 1976 u'v': what an observer notices side by side, and what nobody overlooks.
constexpr double just_seen = 0.004, obvious = 0.02;

std::string xy_text(const vec2& xy) { return decimal(xy[0], 4) + ", " + decimal(xy[1], 4); }

void judge_light(std::vector<finding>& out, const outcome& predicted) {
  const double before = predicted.white_before[1], after = predicted.white_after[1], lost = 1 - after / before;
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

void judge_colours(std::vector<finding>& out, const outcome& predicted) {
  if (const auto& gamut = predicted.gamut) {
    const struct {
      const char* name;
      vec2 chromaticity_table::*xy;
    } rows[] = {{"red", &chromaticity_table::red},
                {"green", &chromaticity_table::green},
                {"blue", &chromaticity_table::blue}};
    for (const auto& r : rows) {
      judge_miss(out, "primary-out-of-reach", r.name, gamut->asked.*r.xy, gamut->shown.*r.xy);
    }
  }
  judge_miss(out, "white-out-of-reach", "white", predicted.white_wanted, chromaticity(predicted.white_after));
  const bool far = predicted.gray_mean > 3;
  out.push_back({"gray-differences", far ? severity::warning : severity::note,
                 "grays are predicted to be off their target by CIEDE2000 " + decimal(predicted.gray_mean, 2) +
                     " on average and " + decimal(predicted.gray_largest, 2) + " at most",
                 far ? "look at the grays in the report before loading these tables" : ""});
}

void judge_settings(std::vector<finding>& out, const settings& set, const outcome& predicted) {
  if (!solves_two_tables(set.mode)) return;
  if (matches_gray(set.mode) && set.temp < 0 && !set.white) {
    const double apart = uv1976_distance(predicted.white_wanted, set.xytable.white);
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

std::vector<finding> check_plan(const settings& set, const outcome& predicted) {
  std::vector<finding> out;
  judge_light(out, predicted);
  judge_colours(out, predicted);
  judge_settings(out, set, predicted);
  sort_findings(out);
  return out;
}

}  // namespace corvantile
