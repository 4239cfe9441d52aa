#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "corvantile/job/judgements.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {
namespace {

// Drive values that differ by less are equal: files have at least four digits.
constexpr double same_drive = 1e-4;
// Readings of one dark agree far better than this. Beyond it, the colour of dark grays is a matter of chance.
constexpr double dark_spread = 1e-3;  // of white
// Instruments repeat themselves to some 0.2 % of a reading, and to less than this much of the ramp's full light.
constexpr double noise_of_level = 0.02;
constexpr double noise_of_full = 5e-4;
// The local exponent of a tone curve is 1 or more. If it is a tenth of that over several levels, the display clips.
constexpr double level_exponent = 0.1;
constexpr std::size_t level_steps = 3;
constexpr double level_span = 0.025;      // of full drive
constexpr double dark_level_span = 0.05;  // without any light at all: 13 of 255 codes
// Beyond this, the model's error in white is obvious to anybody.
constexpr double additivity = 0.05;

// The rows of one ramp, and what they say above the dark.
struct ramp_view {
  const measurements& samples;
  const monitor& mon;
  std::size_t first;  // row
  double full_drive;

  std::size_t size() const { return static_cast<std::size_t>(samples.nramp); }
  double drive(std::size_t i) const { return ramp_drive(samples, first + i) / full_drive; }
  double light(std::size_t i) const { return samples.data(first + i, 4) - mon.darklight[1]; }
};

// Makes one warning of all samples of a kind: the first, and how many more there are.
struct offenders {
  std::optional<std::size_t> row;
  std::size_t more = 0;
  std::string value;

  void add(std::size_t at, const std::string& text) {
    if (row) {
      ++more;
    } else {
      row = at;
      value = text;
    }
  }
  void report(std::vector<finding>& to, const char* id, const measurements& samples, const char* meaning,
              const char* action) const {
    if (!row) return;
    std::string text = samples.name + ": " + place_text(samples, *row) + ": " + value;
    if (more > 0) text += " (and " + std::to_string(more) + " more like it)";
    to.push_back({id, severity::warning, text.append(meaning), action});
  }
};

double full_drive_of(const measurements& samples) {
  double full = samples.data(0, 0);
  for (std::size_t c = 0; c < 3; ++c) full = std::max(full, std::ranges::max(samples.data.col(c)));
  return full;
}

// The drive of a ramp's first sample; of white, that of the lowest channel.
double lowest_top(const measurements& samples, std::size_t ramp, std::size_t row) {
  if (ramp > 0) return ramp_drive(samples, row);
  return std::min({samples.data(row, 0), samples.data(row, 1), samples.data(row, 2)});
}

void judge_ends(const ramp_view& ramp, std::size_t number, offenders& bottoms, offenders& tops) {
  const measurements& samples = ramp.samples;
  const std::size_t last = ramp.first + ramp.size() - 1;
  for (std::size_t c = 0; c < 3; ++c) {
    if (samples.data(last, c) == 0) continue;
    bottoms.add(last, "the last drive of the ramp is " + short_number(samples.data(last, c)) + ", not 0");
    break;
  }
  const double top = lowest_top(samples, number, ramp.first);
  if (top < ramp.full_drive * (1 - same_drive)) {
    tops.add(ramp.first, "the ramp begins at drive " + short_number(top) + ", but full drive is " +
                             short_number(ramp.full_drive));
  }
}

void judge_rises(const ramp_view& ramp, offenders& rises) {
  for (std::size_t i = 0; i + 1 < ramp.size(); ++i) {
    const double rise = ramp.light(i + 1) - ramp.light(i);
    if (!(ramp.drive(i + 1) < ramp.drive(i)) ||
        rise <= noise_of_level * ramp.light(i) + noise_of_full * ramp.light(0)) {
      continue;
    }
    rises.add(ramp.first + i + 1, "Y is " + short_number(ramp.samples.data(ramp.first + i + 1, 4)) + ", more than " +
                                      short_number(ramp.samples.data(ramp.first + i, 4)) +
                                      " at the higher drive before");
  }
}

// Whether the light stays level from sample `i` down to sample `j` of the ramp.
bool is_level(const ramp_view& ramp, std::size_t i, std::size_t j) {
  const double span = ramp.drive(i) - ramp.drive(j);
  if (!(ramp.light(i) > 0)) return span >= dark_level_span;
  return span >= level_span &&
         std::abs(ramp.light(i) - ramp.light(j)) < level_exponent * ramp.light(i) * span / ramp.drive(i);
}

void judge_levels(const ramp_view& ramp, offenders& level) {
  for (std::size_t i = 0; i + level_steps < ramp.size(); ++i) {
    std::size_t j = i + level_steps;
    while (j + 1 < ramp.size() && ramp.drive(i) - ramp.drive(j) < level_span) ++j;
    if (!is_level(ramp, i, j)) continue;
    while (j + 1 < ramp.size() && is_level(ramp, i, j + 1)) ++j;
    level.add(ramp.first + i, "Y stays at " + short_number(ramp.samples.data(ramp.first + i, 4)) + " down to level " +
                                  std::to_string(j + 1));
    i = j;
  }
}

void judge_darks(const measurements& samples, const monitor& mon, std::vector<finding>& to) {
  const auto n = static_cast<std::size_t>(samples.nramp);
  for (std::size_t k = 0; k < 3; ++k) {
    std::size_t low = n - 1, high = n - 1;
    for (std::size_t row = n - 1; row < ramp_count(samples.version) * n; row += n) {
      if (samples.data(row, 3 + k) < samples.data(low, 3 + k)) low = row;
      if (samples.data(row, 3 + k) > samples.data(high, 3 + k)) high = row;
    }
    const double spread = (samples.data(high, 3 + k) - samples.data(low, 3 + k)) / mon.whitepoint[k];
    if (!(spread > dark_spread)) continue;
    to.push_back({"dark-spread", severity::warning,
                  samples.name + ": " + place_text(samples, high) + ": at zero drive " + "XYZ"[k] + " is " +
                      short_number(samples.data(high, 3 + k)) + ", at " + sample_text(samples, low) + " " +
                      short_number(samples.data(low, 3 + k)) + ": they differ by " + short_percent(spread) +
                      " of white. The display's black or stray light changed: dark grays will be off",
                  "measure again in the dark, with dynamic backlight off"});
    return;
  }
}

void judge_sum(const measurements& samples, const monitor& mon, std::vector<finding>& to) {
  const double white = mon.whitepoint[1] - mon.darklight[1];
  const double sum = mon.Ymax[0] + mon.Ymax[1] + mon.Ymax[2];
  if (!(std::abs(sum / white - 1) > additivity)) return;
  to.push_back({"additivity", severity::warning,
                samples.name + ": " + place_text(samples, 0) + ": white's Y is " + short_number(white) +
                    " above the dark, red, green and blue together have " + short_number(sum) + ", " +
                    short_percent(sum / white - 1) +
                    " off. The model adds the channels, so its whites will be off too",
                "switch off dynamic backlight and picture modes that boost colours, and measure again"});
}

}  // namespace

std::vector<finding> judge_measurements(const measurements& samples, const monitor& mon) {
  offenders bottoms, tops, rises, levels;
  const auto n = static_cast<std::size_t>(samples.nramp);
  const double full_drive = full_drive_of(samples);
  for (std::size_t number = 0; number < ramp_count(samples.version); ++number) {
    const ramp_view ramp{samples, mon, number * n, full_drive};
    judge_ends(ramp, number, bottoms, tops);
    if (number > 3) continue;  // only the dark of these ramps is used
    judge_rises(ramp, rises);
    judge_levels(ramp, levels);
  }
  std::vector<finding> found;
  bottoms.report(found, "ramp-not-to-zero", samples, ". Its light counts as the dark, so dark grays will be wrong",
                 "measure down to drive 0");
  tops.report(found, "ramp-below-full", samples,
              ". Its light counts as that of full drive, and colours above it are guesses",
              "measure the ramps from full drive, or leave out samples at higher drives");
  judge_darks(samples, mon, found);
  rises.report(found, "luminance-rises", samples, ". The fitted curve cannot fall, so it misses both",
               "look for exchanged samples, or a display that was cold or adapts itself, and measure again");
  levels.report(found, "luminance-level", samples, ". Drive values there cannot be told apart: the display clips",
                "lower its contrast (in the dark: raise its brightness) and measure again");
  judge_sum(samples, mon, found);
  return found;
}

}  // namespace corvantile
