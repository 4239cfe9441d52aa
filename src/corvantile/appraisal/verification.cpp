#include "corvantile/appraisal/verification.hpp"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

#include "corvantile/colour/chromaticity.hpp"

namespace corvantile {
namespace {

double level(const vec3& u) { return std::max({u[0], u[1], u[2]}); }

std::optional<vec3> reading_at(const std::vector<reading>& rows, const vec3& drive) {
  const auto r = std::ranges::find(rows, drive, &reading::drive);
  return r == rows.end() ? std::nullopt : std::optional(r->xyz);
}

// The readings, scaled so that full white is as bright as predicted.
std::vector<reading> scaled(const scene& sc, std::vector<reading> rows) {
  double white = 0;
  for (const reading& r : rows) {
    if (r.drive == gray(1)) white = std::max(white, r.xyz[1]);
  }
  const double factor = white > 0 ? sc.after(gray(1))[1] / white : 1;
  for (reading& r : rows) r.xyz = factor * r.xyz;
  return rows;
}

// The measured gray axis, with the mean of the readings at each drive.
gray_curve measured_grays(const scene& sc, const std::vector<reading>& rows) {
  std::vector<reading> grays;
  std::ranges::copy_if(rows, std::back_inserter(grays), [](const reading& r) { return is_gray(r.drive); });
  std::ranges::stable_sort(grays, {}, [](const reading& r) { return r.drive[0]; });
  std::vector<double> drive;
  std::vector<vec3> xyz;
  for (std::size_t i = 0, end = 0; i < grays.size(); i = end) {
    vec3 sum;
    for (end = i; end < grays.size() && grays[end].drive[0] == grays[i].drive[0]; ++end) sum = sum + grays[end].xyz;
    drive.push_back(grays[i].drive[0]);
    xyz.push_back(sum / static_cast<double>(end - i));
  }
  return gray_curve_of(sc, drive, xyz);
}

// Whether a patch is on a ramp: it drives the ramp's channels equally, and no other.
bool lies_on(const vec3& u, const test_ramp& ramp) { return level(u) > 0 && u == level(u) * ramp.on; }

// The mean difference of the readings from what `show` predicts, scaled to the brightness of `white`: predictions
// differ only in colour.
double mean_from(const std::vector<reading>& rows, const vec3& white, const shown_by& show) {
  const double factor = white[1] / show(gray(1))[1];
  difference_counter all;
  for (const reading& r : rows) all.add(difference_of(factor * show(r.drive), r.xyz, white), r.drive);
  return all.result().mean;
}

// The readings adapted from their white to `white`: X, Y and Z each in proportion.
std::vector<reading> adapted(std::vector<reading> rows, const vec3& white) {
  const vec3 from = reading_at(rows, gray(1)).value_or(white);
  for (reading& r : rows) {
    for (std::size_t k = 0; k < 3; ++k) r.xyz[k] *= white[k] / from[k];
  }
  return rows;
}

// The display without tables: from the first measurement if it has this drive, because the model may be wrong.
vec3 read_before(const scene& sc, const vec3& u) {
  constexpr double same = 1e-3;  // of full drive
  const monitor& m = sc.of.display;
  for (std::size_t i = 0; i < m.rgb.rows(); ++i) {
    const vec3 d = row3(m.rgb, i) - u;
    if (std::max({std::abs(d[0]), std::abs(d[1]), std::abs(d[2])}) < same) return row3(m.xyz, i);
  }
  return sc.before(u);
}

load_distances distances_of(const scene& sc, const std::vector<reading>& rows) {
  const vec3 white = sc.after(gray(1));
  const auto after = [&](const vec3& u) { return sc.after(u); };
  return {.once = mean_from(rows, white, after),
          .none = mean_from(rows, white, [&](const vec3& u) { return read_before(sc, u); }),
          .twice = mean_from(rows, white, [&](const vec3& u) { return sc.after(sc.through(u)); }),
          .other_white = mean_from(adapted(rows, white), white, after)};
}

load_state state_of(const load_distances& d) {
  constexpr double alike = 1.5;  // model and instrument can easily be off by this
  constexpr double good = 3;     // displays and instruments repeat better than this
  const auto likely = [&](double other) { return other < d.once && (other <= good || 2 * other < d.once); };
  if (d.once <= good && d.once <= d.none && d.once <= d.twice) return load_state::once;
  if (d.once <= alike && d.none < d.once && d.none <= d.twice) return load_state::too_mild;
  if (d.other_white <= good && d.other_white < 0.5 * std::min({d.once, d.none, d.twice}))
    return load_state::another_white;
  if (likely(d.none) && d.none <= d.twice) return load_state::none;
  if (likely(d.twice)) return load_state::twice;
  return load_state::unclear;
}

// Whether two luminances of white seem to be in the same unit: near each other, and not the 100 of relative readings.
bool in_one_unit(double a, double b) {
  const auto is_relative = [](double white) { return std::abs(white - 100) < 0.5; };
  return a < 2 * b && b < 2 * a && !is_relative(a) && !is_relative(b);
}

std::optional<double> white_change(const scene& sc, const readings& after, const provenance& first) {
  const auto white = reading_at(after.rows, gray(1));
  if (!white) return std::nullopt;
  const bool absolute = after.absolute && first.absolute.value_or(false);
  if (!absolute && !in_one_unit(sc.before(gray(1))[1], (*white)[1])) return std::nullopt;
  return (*white)[1] / sc.after(gray(1))[1] - 1;
}

}  // namespace

verification verify(const subject& s, const readings& after, const provenance& first) {
  const scene sc = make_scene(s);
  const std::vector<reading> read = scaled(sc, after.rows);
  verification v;
  difference_counter grays, all, prediction;
  for (const reading& r : read) {
    const vec3 predicted = sc.after(r.drive);
    const double from_asked = sc.difference(r.drive, r.xyz);
    const double from_predicted = difference_of(predicted, r.xyz, sc.asked.white);
    v.patches.push_back({r.drive, asked_xyz(sc.asked, r.drive), predicted, r.xyz, from_asked, from_predicted});
    if (is_gray(r.drive)) grays.add(from_asked, r.drive);
    all.add(from_asked, r.drive);
    prediction.add(from_predicted, r.drive);
    for (std::size_t i = 0; i < test_ramps.size(); ++i) {
      if (!lies_on(r.drive, test_ramps[i])) continue;
      v.ramps[i].drive.push_back(level(r.drive));
      v.ramps[i].difference.push_back(from_asked);
    }
  }
  v.grays = grays.result();
  v.all = all.result();
  v.from_prediction = prediction.result();
  if (const auto white = reading_at(after.rows, gray(1)))
    v.white = white_figures_of(*white, reading_at(after.rows, gray(0)).value_or(gray(unknown)), s.white);
  v.distances = distances_of(sc, read);
  v.loaded = state_of(v.distances);
  v.gray = measured_grays(sc, read);
  v.corners =
      corners_of([&](const vec3& u) { return reading_at(read, u).value_or(u == gray(0) ? vec3{} : gray(unknown)); });
  v.white_change = white_change(sc, after, first);
  v.calibration_appeared = after.calibration && !first.calibration;
  v.calibration_vanished = !after.calibration && first.calibration;
  return v;
}

}  // namespace corvantile
