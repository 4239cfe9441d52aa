#include "corvantile/readings/ramps.hpp"

#include <algorithm>
#include <cmath>
#include <fmt/core.h>
#include <tuple>
#include <utility>

#include "corvantile/numerics/linsolv.hpp"
#include "corvantile/readings/derived_ramps.hpp"
#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {
namespace {

constexpr std::size_t least_levels = 5;     // of a ramp: fewer make no curve
constexpr std::size_t enough_levels = 9;    // of measured ramps, to prefer them without unseen patches
constexpr std::size_t least_unseen = 10;    // patches to compare the two ways on
constexpr std::size_t least_near_gray = 5;  // of them, for a mean of their own
constexpr double tolerated = 0.01;          // error of additivity and of repeats, without unseen patches
constexpr int pieces = 5;                   // of the models that predict: the default of a fit

// Rounds away the digits that a conversion from percent and back has added.
double in_percent(double drive) { return std::round(drive * 1e11) / 1e9; }

struct ramp_set {
  std::size_t levels;
  std::vector<bool> seen;  // per reading: the ramps are made of it, or it must not be used
  // Rows R, G, B (0..1), X, Y, Z of white, red, green and blue, each from full drive down to zero.
  std::vector<std::array<double, 6>> samples = {};
  std::size_t repaired = 0;
};

void add(std::vector<std::array<double, 6>>& samples, const vec3& drive, const vec3& xyz) {
  samples.push_back({drive[0], drive[1], drive[2], xyz[0], xyz[1], xyz[2]});
}

void mark(std::vector<bool>& seen, const patch& p) {
  for (const std::size_t row : p.rows) seen[row] = true;
}

std::vector<bool> unusable(const readings& all, const sorted_readings& sorted) {
  std::vector<bool> marks(all.rows.size());
  for (const std::size_t row : sorted.dropped) marks[row] = true;
  return marks;
}

vec3 one_channel(std::size_t c, double drive) {
  vec3 d;
  d[c] = drive;
  return d;
}

double level_of(const patch& p) { return largest_drive(p.drive); }

// For readings that lack patches: names a chart that has them.
[[noreturn]] void refuse_chart(const readings& all, std::string_view what) {
  refuse_content(all.source,
                 fmt::format("{}. This chart will do: corvantile-kit chart --ramps derived -o chart.ti1", what));
}

mat3 full_primaries(const sorted_readings& sorted) {
  const vec3& dark = sorted.dark->xyz;
  return {{sorted.ramp[1].back().xyz - dark, sorted.ramp[2].back().xyz - dark, sorted.ramp[3].back().xyz - dark}};
}

// Whether no primary is a mixture of the other two, as far as numbers can tell.
bool span_a_gamut(const mat3& primaries) {
  const mat3 inverse = inv(primaries);
  double largest = 0, sum_of_inverse = 0;
  for (std::size_t i = 0; i < 9; ++i) {
    largest = std::max(largest, std::abs(primaries(i / 3, i % 3)));
    sum_of_inverse += std::abs(inverse(i / 3, i % 3));
  }
  return largest * sum_of_inverse < 1e9;  // real displays have some 10; false for NaN
}

void require_grays(const readings& all, const sorted_readings& sorted) {
  const auto& gray = sorted.ramp[0];
  if (all.rows.empty()) refuse_content(all.source, "holds no readings");
  if (gray.size() < 2) {
    refuse_chart(all, "holds no gray ramp: measure at least five gray levels (R = G = B) from black to white");
  }
  if (!is_full(gray.back())) {
    refuse_chart(all, fmt::format("the brightest gray has a drive of {:.2f} %: measure a white at full drive, too",
                                  100 * level_of(gray.back())));
  }
  if (!sorted.dark) refuse_chart(all, "holds no reading at zero drive: measure black (R = G = B = 0), too");
  const double white = gray.back().xyz[1], black = sorted.dark->xyz[1];
  if (!(white > black)) {
    refuse_content(all.source, fmt::format("white reads Y = {:.3f}, which is not brighter than black with {:.3f}: "
                                           "check the order of the columns, and that the patches were shown",
                                           white, black));
  }
  if (gray.size() + 1 < least_levels) {
    refuse_chart(all,
                 fmt::format("the gray ramp has {} levels with black and white, and needs at least five: measure "
                             "more grays (R = G = B)",
                             gray.size() + 1));
  }
}

void require_primaries(const readings& all, const sorted_readings& sorted) {
  std::string missing;
  for (std::size_t c = 0; c < 3; ++c) {
    const auto& ramp = sorted.ramp[c + 1];
    if (ramp.empty() || !is_full(ramp.back()))
      missing += fmt::format("{}{}", missing.empty() ? "" : ", ", channel_names[c]);
  }
  if (missing.empty()) {
    if (span_a_gamut(full_primaries(sorted))) return;
    refuse_content(all.source,
                   "full red, green and blue lie on one line of the chromaticity diagram: no ramps follow "
                   "from them");
  }
  const bool gray_alone = sorted.others.empty() && std::ranges::all_of(std::span(sorted.ramp).subspan(1),
                                                                       [](const auto& r) { return r.empty(); });
  if (gray_alone) {
    refuse_chart(all,
                 "holds a gray ramp alone: add full red, green and blue (for HCFR, give the sheet of primaries as a "
                 "second file)");
  }
  refuse_chart(
      all, fmt::format("no reading of full {}: measure each primary at full drive with the others at zero", missing));
}

using shared_level = std::array<const patch*, 4>;  // white, red, green, blue

// The levels that all four ramps share, rising, without the dark; empty if a ramp is missing.
std::vector<shared_level> shared_levels(const sorted_readings& sorted) {
  std::vector<shared_level> shared;
  for (const patch& white : sorted.ramp[0]) {
    shared_level row{&white};
    bool all = true;
    for (std::size_t c = 1; c < 4; ++c) {
      const auto at = std::ranges::lower_bound(sorted.ramp[c], level_of(white) - same_drive, {}, level_of);
      if (at == sorted.ramp[c].end() || level_of(*at) > level_of(white) + same_drive) {
        all = false;
        break;
      }
      row[c] = &*at;
    }
    if (all) shared.push_back(row);
  }
  return shared;
}

ramp_set measured_ramps(const readings& all, const sorted_readings& sorted, const std::vector<shared_level>& shared) {
  ramp_set set{shared.size() + 1, unusable(all, sorted)};
  for (std::size_t r = 0; r < 4; ++r) {
    for (std::size_t i = shared.size(); i-- > 0;) {
      const patch& p = *shared[i][r];
      add(set.samples, r == 0 ? p.drive : one_channel(r - 1, p.drive[r - 1]), p.xyz);
      mark(set.seen, p);
    }
    add(set.samples, {}, sorted.dark->xyz);
  }
  mark(set.seen, *sorted.dark);
  return set;
}

// The grays to derive from: the shared levels if there are enough, so that the other grays can test the prediction
// (more levels do not make a better model, they only add noise near black); else all.
std::vector<const patch*> grays_to_derive_from(const sorted_readings& sorted,
                                               const std::vector<shared_level>& shared) {
  std::vector<const patch*> gray;
  if (shared.size() + 1 >= enough_levels) {
    for (const shared_level& row : shared) gray.push_back(row[0]);
  } else {
    for (const patch& p : sorted.ramp[0]) gray.push_back(&p);
  }
  return gray;
}

ramp_set ramps_from_gray(const readings& all, const sorted_readings& sorted, const std::vector<const patch*>& gray) {
  const vec3& dark = sorted.dark->xyz;
  const mat3 primaries = full_primaries(sorted);
  std::vector<vec3> light(gray.size());
  std::ranges::transform(gray, light.begin(), [](const patch* p) { return p->xyz; });
  const derived_ramps derived = derive_ramps(light, dark, primaries);

  ramp_set set{gray.size() + 1, unusable(all, sorted)};
  set.repaired = derived.repaired;
  for (std::size_t r = 0; r < 4; ++r) {
    for (std::size_t i = gray.size(); i-- > 0;) {
      if (r == 0) {
        add(set.samples, gray[i]->drive, gray[i]->xyz);
      } else {
        add(set.samples, one_channel(r - 1, level_of(*gray[i])),
            dark + derived.share(i, r - 1) * primaries.col[r - 1]);
      }
    }
    add(set.samples, {}, dark);
  }
  for (const patch* p : gray) mark(set.seen, *p);
  mark(set.seen, *sorted.dark);
  // A primary that the derived top meets is seen; the others stay unseen and tell by how much it is missed.
  for (std::size_t c = 0; c < 3; ++c) {
    if (std::abs(derived.share(gray.size() - 1, c) - 1) < 1e-9) mark(set.seen, sorted.ramp[c + 1].back());
  }
  return set;
}

measurements assemble(const readings& all, const ramp_set& set) {
  const auto rest = static_cast<std::size_t>(std::ranges::count(set.seen, false));
  measurements m{all.source, matrix(set.samples.size() + rest, 6), static_cast<int>(set.levels), 2};
  std::size_t row = 0;
  const auto put = [&](const std::array<double, 6>& sample) {
    for (std::size_t c = 0; c < 6; ++c) m.data(row, c) = c < 3 ? in_percent(sample[c]) : sample[c];
    ++row;
  };
  for (const auto& sample : set.samples) put(sample);
  for (std::size_t i = 0; i < all.rows.size(); ++i) {
    const auto& [drive, xyz, line] = all.rows[i];
    if (!set.seen[i]) put({drive[0], drive[1], drive[2], xyz[0], xyz[1], xyz[2]});
  }
  return m;
}

// The readings that neither of two sets of ramps has seen, as rows R, G, B (0..1), X, Y, Z.
matrix unseen_samples(const readings& all, const std::vector<bool>& a, const std::vector<bool>& b) {
  std::vector<std::size_t> rows;
  for (std::size_t i = 0; i < all.rows.size(); ++i) {
    if (!a[i] && !b[i]) rows.push_back(i);
  }
  matrix samples(rows.size(), 6);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    for (std::size_t c = 0; c < 3; ++c) {
      samples(i, c) = all.rows[rows[i]].drive[c];
      samples(i, 3 + c) = all.rows[rows[i]].xyz[c];
    }
  }
  return samples;
}

double sum_of_channels_less_1(const sorted_readings& sorted) {
  const mat3 p = full_primaries(sorted);
  return (p(1, 0) + p(1, 1) + p(1, 2)) / (sorted.ramp[0].back().xyz[1] - sorted.dark->xyz[1]) - 1;
}

// The lower score wins. Grays count twice, since they are in both means.
double score(const prediction_figures& f) {
  return f.near_gray.n >= least_near_gray ? (f.near_gray.mean + f.all.mean) / 2 : f.all.mean;
}

// Prediction error on unseen patches; nothing if no model fits. (A job with these ramps then says why.)
std::optional<prediction_figures> tried(const measurements& m, const matrix& unseen, const vec3& white) {
  try {
    return summarize(predict(makemonitor(m, pieces), unseen, white));
  } catch (const failure&) {
    return std::nullopt;
  }
}

std::string compared(const prediction_figures& taken, const prediction_figures& other) {
  std::string text = fmt::format("over {} unseen patches CIEDE2000 is {:.2f} on average against {:.2f}", taken.all.n,
                                 taken.all.mean, other.all.mean);
  if (taken.near_gray.n >= least_near_gray)
    text += fmt::format(", near gray {:.2f} against {:.2f}", taken.near_gray.mean, other.near_gray.mean);
  return text;
}

// What `automatic` takes, and why.
std::pair<ramp_source, std::string> decide(const ramp_choice& choice) {
  using enum ramp_source;
  const std::string few = fmt::format("the four ramps share only {} levels", choice.measured_levels);
  if (choice.measured_levels == 0)
    return {derived, "red, green and blue ramps at the levels of the gray ramp were not measured"};
  if (choice.measured_levels < least_levels) return {derived, few};
  if (choice.measured_predicts && choice.derived_predicts) {
    const auto &m = *choice.measured_predicts, &d = *choice.derived_predicts;
    if (score(d) < score(m)) return {derived, compared(d, m)};
    return {measured, compared(m, d)};
  }
  if (choice.measured_predicts) return {measured, "no model fits ramps derived from the gray ramp"};
  if (choice.derived_predicts) return {derived, "no model fits the measured ramps"};
  const std::string blind = "no unseen patches to judge by, and ";
  if (choice.measured_levels < enough_levels) return {derived, blind + few};
  if (std::abs(choice.additivity) > tolerated) {
    return {derived, fmt::format("{}the channels' sum differs from the white by {:.1f} %, more than 1 %", blind,
                                 100 * choice.additivity)};
  }
  if (choice.repeated.ramps && choice.repeated.ramps->spread > tolerated) {
    return {derived, fmt::format("{}repeated readings are {:.1f} % apart, more than 1 %", blind,
                                 100 * choice.repeated.ramps->spread)};
  }
  return {measured, blind + "the channels add up to the white within 1 %"};
}

}  // namespace

ramp_choice ramps(const readings& all, ramp_source how) {
  const sorted_readings sorted = sort_readings(all);
  require_grays(all, sorted);
  require_primaries(all, sorted);
  const auto shared = shared_levels(sorted);
  ramp_choice choice;
  choice.measured_levels = shared.empty() ? 0 : shared.size() + 1;
  choice.gray_levels = sorted.ramp[0].size() + 1;
  choice.additivity = sum_of_channels_less_1(sorted);
  choice.repeated = repeats(all, sorted);
  choice.notes = sorted.notes;
  const bool possible = choice.measured_levels >= least_levels;
  if (how == ramp_source::measured && !possible) {
    refuse_content(all.source,
                   fmt::format("the gray, red, green and blue ramps share {} levels and need at least five: "
                               "measure all four at the same levels, or take derived ramps",
                               choice.measured_levels));
  }

  const ramp_set derived_set = ramps_from_gray(all, sorted, grays_to_derive_from(sorted, shared));
  measurements derived = assemble(all, derived_set), measured;
  if (possible) {
    const ramp_set measured_set = measured_ramps(all, sorted, shared);
    measured = assemble(all, measured_set);
    const matrix unseen = unseen_samples(all, measured_set.seen, derived_set.seen);
    if (unseen.rows() >= least_unseen) {
      const vec3& white = sorted.ramp[0].back().xyz;
      choice.measured_predicts = tried(measured, unseen, white);
      choice.derived_predicts = tried(derived, unseen, white);
    }
  }

  if (how == ramp_source::automatic) {
    std::tie(choice.taken, choice.why) = decide(choice);
  } else {
    choice.taken = how;
    choice.why = "as asked for";
  }
  if (choice.taken == ramp_source::measured) {
    choice.data = std::move(measured);
  } else {
    choice.data = std::move(derived);
    choice.repaired = derived_set.repaired;
    if (choice.repaired > 0) {
      choice.notes.add(
          {fmt::format("Noise made {} values of the derived ramps fall or go below zero; they were "
                       "interpolated between their neighbours.",
                       choice.repaired)});
    }
  }
  return choice;
}

bool has_derived_ramps(const measurements& m) {
  const auto n = static_cast<std::size_t>(m.nramp);
  for (std::size_t k = 3; k < 6; ++k) {
    const double white = m.data(0, k), dark = m.data(n - 1, k);
    const double sum = m.data(n, k) + m.data(2 * n, k) + m.data(3 * n, k) - 2 * dark;
    if (!(std::abs(sum - white) <= 1e-13 * std::abs(white))) return false;
  }
  return true;
}

}  // namespace corvantile
