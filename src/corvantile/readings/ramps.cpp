#include "corvantile/readings/ramps.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

#include "corvantile/numerics/linsolv.hpp"
#include "corvantile/readings/derived_ramps.hpp"
#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {
namespace {

constexpr std::size_t least_levels = 5;     // of a ramp: fewer carry no curve
constexpr std::size_t enough_levels = 9;    // of measured ramps, to prefer them without further evidence
constexpr std::size_t least_unseen = 10;    // patches on which two ways are compared
constexpr std::size_t least_near_gray = 5;  // of them, for a mean of their own
constexpr double tolerated = 0.01;          // of additivity and of repeats, where there is no further evidence
constexpr int pieces = 5;                   // of the models that predict: the default of a fit

// One drive value in all its digits but those that a conversion from percent and back has added.
double in_percent(double drive) { return std::round(drive * 1e11) / 1e9; }

// Ramps to be: which patches they are made of, and their samples as rows R, G, B, X, Y, Z with drives 0..1.
struct ramp_set {
  std::size_t levels;
  std::vector<bool> seen;  // rows of the readings that these ramps are made of, or that nothing may use
  std::vector<std::array<double, 6>> samples = {};  // white, red, green, blue; each from full drive down to zero
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

double level(const patch& p) { return std::max({p.drive[0], p.drive[1], p.drive[2]}); }

[[noreturn]] void refuse(const readings& all, const std::string& what) { refuse_content(all.source, what); }

[[noreturn]] void refuse_for_chart(const readings& all, const std::string& what) {
  refuse(all, what + ". These patches will do: corvantile-kit chart --ramps derived -o chart.ti1");
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
  return largest * sum_of_inverse < 1e9;  // real displays have some 10; false for what is not a number
}

void require_grays(const readings& all, const sorted_readings& sorted) {
  const auto& gray = sorted.ramp[0];
  if (all.rows.empty()) refuse(all, "holds no readings");
  if (gray.size() < 2) {
    refuse_for_chart(all, "holds no gray ramp: measure at least five gray levels (R = G = B) from black to white");
  }
  if (!is_full(gray.back())) {
    refuse_for_chart(all, "the brightest gray has a drive of " + percent(level(gray.back()), 2) +
                              ", expected a white at full drive: measure it too");
  }
  if (!sorted.dark) refuse_for_chart(all, "holds no reading at zero drive: measure black (R = G = B = 0) too");
  if (!(gray.back().xyz[1] > sorted.dark->xyz[1])) {
    refuse(all, "white reads Y = " + decimal(gray.back().xyz[1], 3) + " and black " +
                    decimal(sorted.dark->xyz[1], 3) +
                    ", expected a white that is brighter than the black: look at the order of the columns, and "
                    "whether the patches were shown");
  }
  if (gray.size() + 1 < least_levels) {
    refuse_for_chart(all, "the gray ramp has " + std::to_string(gray.size() + 1) +
                              " levels with black and white, expected at least five: measure more grays (R = G = B)");
  }
}

void require_primaries(const readings& all, const sorted_readings& sorted) {
  std::string missing;
  for (std::size_t c = 0; c < 3; ++c) {
    const auto& ramp = sorted.ramp[c + 1];
    if (ramp.empty() || !is_full(ramp.back()))
      missing += (missing.empty() ? "" : ", ") + std::string(channel_names[c]);
  }
  if (missing.empty()) {
    if (span_a_gamut(full_primaries(sorted))) return;
    refuse(all, "full red, green and blue lie on one line of the chromaticity diagram: no ramps follow from them");
  }
  const bool alone = std::ranges::all_of(std::span(sorted.ramp).subspan(1), [](const auto& r) { return r.empty(); });
  if (alone && sorted.others.empty()) {
    refuse_for_chart(
        all,
        "holds a gray ramp alone: add full red, green and blue, for HCFR from the sheet of primaries as a "
        "second file");
  }
  refuse_for_chart(all,
                   "no reading of full " + missing + ": measure each primary at full drive with the others at zero");
}

using shared_level = std::array<const patch*, 4>;  // white, red, green, blue

// The shared levels of all four ramps, rising, without the dark; empty where a ramp is missing.
std::vector<shared_level> shared_levels(const sorted_readings& sorted) {
  std::vector<shared_level> shared;
  for (const patch& white : sorted.ramp[0]) {
    shared_level row{&white};
    bool all = true;
    for (std::size_t c = 1; c < 4; ++c) {
      const auto at = std::ranges::lower_bound(sorted.ramp[c], level(white) - same_drive, {}, level);
      if (at == sorted.ramp[c].end() || level(*at) > level(white) + same_drive) {
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

// The grays to derive from: the shared levels where they are enough, so that the other grays can tell how well they
// are predicted (more levels make no better model: they only bring more noise near black); else all there are.
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
        add(set.samples, one_channel(r - 1, level(*gray[i])), dark + derived.share(i, r - 1) * primaries.col[r - 1]);
      }
    }
    add(set.samples, {}, dark);
  }
  for (const patch* p : gray) mark(set.seen, *p);
  mark(set.seen, *sorted.dark);
  // The primaries are seen where the derived tops meet them; where they do not, they tell by how much.
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

// The readings that neither of two ways of making ramps has seen, as rows R, G, B (0..1), X, Y, Z.
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

// What decides between two ways: grays count twice, since they are in both means.
double score(const prediction_figures& f) {
  return f.near_gray.n >= least_near_gray ? (f.near_gray.mean + f.all.mean) / 2 : f.all.mean;
}

// How ramps predict the unseen; nothing where no model fits them, of which the job that takes them will say why.
std::optional<prediction_figures> tried(const measurements& m, const matrix& unseen, const vec3& white) {
  try {
    return summarize(predict(makemonitor(m, pieces), unseen, white));
  } catch (const failure&) {
    return std::nullopt;
  }
}

std::string compared(const prediction_figures& taken, const prediction_figures& other) {
  std::string text = "over " + std::to_string(taken.all.n) + " unseen patches CIEDE2000 is " +
                     decimal(taken.all.mean, 2) + " on average against " + decimal(other.all.mean, 2);
  if (taken.near_gray.n >= least_near_gray) {
    text += ", near gray " + decimal(taken.near_gray.mean, 2) + " against " + decimal(other.near_gray.mean, 2);
  }
  return text;
}

// Fills in what `automatic` takes, and why.
void decide(ramp_choice& choice) {
  const auto take = [&](ramp_source source, std::string why) {
    choice.taken = source;
    choice.why = std::move(why);
  };
  if (choice.measured_levels < least_levels) {
    return take(ramp_source::derived,
                choice.measured_levels == 0
                    ? "red, green and blue ramps at the levels of the gray ramp were not measured"
                    : "the four ramps share only " + std::to_string(choice.measured_levels) + " levels");
  }
  if (choice.measured_predicts && choice.derived_predicts) {
    const auto &measured = *choice.measured_predicts, &derived = *choice.derived_predicts;
    return score(derived) < score(measured) ? take(ramp_source::derived, compared(derived, measured))
                                            : take(ramp_source::measured, compared(measured, derived));
  }
  if (choice.measured_predicts) return take(ramp_source::measured, "no model fits ramps derived from the gray ramp");
  if (choice.derived_predicts) return take(ramp_source::derived, "no model fits the measured ramps");
  const std::string blind = "no unseen patches to judge by, and ";
  if (choice.measured_levels < enough_levels) {
    return take(ramp_source::derived,
                blind + "the four ramps share only " + std::to_string(choice.measured_levels) + " levels");
  }
  if (std::abs(choice.additivity) > tolerated) {
    return take(ramp_source::derived,
                blind + "the channels' sum is off the white by " + percent(choice.additivity, 1) + ", more than 1 %");
  }
  if (choice.repeated.ramps && choice.repeated.ramps->spread > tolerated) {
    return take(ramp_source::derived, blind + "repeated readings lie " + percent(choice.repeated.ramps->spread, 1) +
                                          " apart, more than 1 %");
  }
  take(ramp_source::measured, blind + "the channels add up to the white within 1 %");
}

}  // namespace

ramp_choice ramps(const readings& all, ramp_source how) {
  const sorted_readings sorted = sort_readings(all);
  // What no way of making ramps can do without.
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
    refuse(all, "the gray, red, green and blue ramps share " + std::to_string(choice.measured_levels) +
                    " levels, expected at least five: measure all four at the same levels, or take derived ramps");
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
    decide(choice);
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
      choice.notes.push_back(std::to_string(choice.repaired) +
                             " values of the derived ramps, which noise had made fall or go below zero, were "
                             "interpolated between their neighbours");
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
