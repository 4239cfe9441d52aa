#include "corvantile/report/wording.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>

#include "corvantile/appraisal/gamut.hpp"
#include "corvantile/report/svg.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {
namespace {

constexpr double missed_visibly = 0.002;  // u'v'

std::string missed_primaries(const gamut_figures& g) {
  if (!g.asked) return "Red, green and blue stay as they are.";
  std::string missed;
  for (std::size_t c = 0; c < 3; ++c) {
    if (!(g.missed[c] >= missed_visibly)) continue;
    missed += fmt::format("{}{} by {}", missed.empty() ? "" : ", ", channel_names[c], svg::number(g.missed[c], 3));
  }
  return missed.empty() ? "All three primaries are reached."
                        : fmt::format("Out of reach{} in u'v': {}.", g.clips ? "" : " and moved", missed);
}

// No digits for differences that nobody sees.
std::string difference_text(double d) { return d < 0.05 ? "less than 0.1" : svg::number(d); }

const char* words_for(const verification& v) {
  constexpr double alike = 1.5;  // model and instrument can easily be off by this
  switch (v.loaded) {
    case load_state::once:
      if (v.distances.once > alike) {
        return "The tables are loaded, once, but the display does not do quite what was predicted: it may have "
               "changed since the first measurement, or its channels do not add up. corvantile-kit refine brings the "
               "grays to their target.";
      }
      return "The tables are loaded, once, and the display does what was predicted.";
    case load_state::too_mild:
      return "The display does about what was predicted, but the tables change so little that nobody can tell "
             "whether they are loaded.";
    case load_state::another_white:
      return "The tables seem to be loaded, but the white is not the predicted one: the picture mode or a colour "
             "control was changed, or a calibration was in effect in one of the two measurements only.";
    case load_state::none:
      return "The tables seem not to have been loaded: the readings agree with the display before the correction.";
    case load_state::twice:
      return "The tables seem to have been applied twice, for example by a profile and by the device.";
    case load_state::unclear:
      break;
  }
  return "The display does not do what was predicted for the tables loaded once, twice or not at all: it may have "
         "changed since the first measurement (warm-up, picture mode, brightness), or a calibration was still in "
         "effect. Or its channels do not add up: corvantile-kit refine then brings the grays to their target.";
}

std::string figures_of(const load_distances& d) {
  return fmt::format(
      "Mean difference of the readings from the prediction for the tables loaded once {}, not at all {}, twice {}, "
      "once with the white as it was read {}.",
      svg::number(d.once, 2), svg::number(d.none, 2), svg::number(d.twice, 2), svg::number(d.other_white, 2));
}

}  // namespace

std::string patch_name(const vec3& drive) {
  const auto full = std::ranges::find(test_ramps, drive, &test_ramp::on);
  if (full != test_ramps.end() && !is_gray(drive)) return full->name;
  const auto in_percent = [](double v) { return svg::number(100 * v); };
  if (is_gray(drive)) return fmt::format("drive {}\u00a0%", in_percent(drive[0]));
  return fmt::format("{}, {}, {}\u00a0%", in_percent(drive[0]), in_percent(drive[1]), in_percent(drive[2]));
}

const char* how_close(const difference_summary& gray) {
  if (gray.mean < 0.5 && gray.max < 2) return "very closely";
  if (gray.mean < 1 && gray.max < 3) return "closely";
  return gray.mean < 2 ? "roughly" : "not closely";
}

std::string verdict_of(const job_figures& f) {
  const difference_summary &before = f.gray.difference_before, &after = f.gray.difference_after;
  return fmt::format(
      "Grays should follow the target {}, with a mean difference of {} where it was {}, at {}\u00a0% of the "
      "luminance. "
      "{}",
      how_close(after), difference_text(after.mean), difference_text(before.mean),
      svg::number(100 * f.white_after.xyz[1] / f.white_before.xyz[1], 0), missed_primaries(f.gamut));
}

std::string verdict_of(const verification& v) {
  return fmt::format("Measured, the grays follow the target {}: mean difference {}, largest {}.", how_close(v.grays),
                     svg::number(v.grays.mean, 2), svg::number(v.grays.max, 2));
}

std::vector<std::string> diagnosis_of(const verification& v) {
  constexpr double steady = 0.03;
  std::vector<std::string> paragraphs{words_for(v), figures_of(v.distances)};
  if (v.calibration_appeared) {
    paragraphs.emplace_back(
        "A video calibration was in effect during this measurement, but not during the first. Unless it is the "
        "correction itself, it acts on top of that: clear it (dispwin -c) and measure again.");
  }
  if (v.calibration_vanished) {
    paragraphs.emplace_back(
        "The first measurement went through a video calibration, this one did not: formats that leave the "
        "calibration in force need it loaded.");
  }
  if (v.white_change && std::abs(*v.white_change) > steady) {
    paragraphs.push_back(fmt::format(
        "White is {:.0f} % {} than predicted. The display has drifted since the first measurement (warm-up, its "
        "brightness setting, ambient light sensor), or it dims bright pictures: the other figures here leave that "
        "out.",
        100 * std::abs(*v.white_change), *v.white_change < 0 ? "darker" : "brighter"));
  }
  return paragraphs;
}

}  // namespace corvantile
