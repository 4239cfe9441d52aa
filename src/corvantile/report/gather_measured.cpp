// What was read behind the loaded tables, against the target and against the prediction.

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string>
#include <utility>

#include "corvantile/colour/chromaticity.hpp"
#include "corvantile/report/scene.hpp"
#include "corvantile/report/svg.hpp"

namespace corvantile {
namespace {

// The readings, as bright as predicted at full white.
std::vector<reading> scaled(const scene& sc, std::vector<reading> readings) {
  double white = 0;
  for (const reading& r : readings) {
    if (r.drive == gray(1)) white = std::max(white, r.xyz[1]);
  }
  const double factor = white > 0 ? sc.after(gray(1))[1] / white : 1;
  for (reading& r : readings) r.xyz = factor * r.xyz;
  return readings;
}

// The measured gray axis, one sample a drive; the readings of a drive that came more than once become their mean.
gray_curve measured_grays(const scene& sc, const std::vector<reading>& readings) {
  std::vector<reading> grays;
  std::ranges::copy_if(readings, std::back_inserter(grays), [](const reading& r) { return is_gray(r.drive); });
  std::ranges::stable_sort(grays, {}, [](const reading& r) { return r.drive[0]; });
  std::vector<double> drive;
  std::vector<vec3> xyz;
  for (std::size_t i = 0, end = 0; i < grays.size(); i = end) {
    vec3 sum;
    for (end = i; end < grays.size() && grays[end].drive[0] == grays[i].drive[0]; ++end) sum = sum + grays[end].xyz;
    drive.push_back(grays[i].drive[0]);
    xyz.push_back(sum / static_cast<double>(end - i));
  }
  return curve_of(sc, drive, xyz);
}

std::optional<vec3> reading_of(const std::vector<reading>& readings, const vec3& drive) {
  const auto r = std::ranges::find(readings, drive, &reading::drive);
  return r == readings.end() ? std::nullopt : std::optional(r->xyz);
}

gamut_corners measured_corners(const std::vector<reading>& readings) {
  const vec3 dark = reading_of(readings, gray(0)).value_or(vec3{});
  gamut_corners c;
  for (std::size_t k = 0; k < 3; ++k) {
    if (const auto xyz = reading_of(readings, mixtures[k + 1].on)) c.primaries_uv[k] = uv_of(*xyz - dark);
  }
  if (const auto xyz = reading_of(readings, gray(1))) c.white_uv = uv_of(*xyz);
  return c;
}

// Which of its channels a patch drives, where all of these are driven alike: the ramp that it belongs to.
bool belongs_to(const vec3& u, const mixture& ramp) {
  const double s = std::max({u[0], u[1], u[2]});
  return s > 0 && u == s * ramp.on;
}

void add_to_ramps(difference_record& d, const std::vector<measured_patch>& patches) {
  for (std::size_t i = 0; i < std::min(d.ramps.size(), mixtures.size()); ++i) {
    for (const measured_patch& p : patches) {
      if (!belongs_to(p.drive, mixtures[i])) continue;
      d.ramps[i].measured_drive.push_back(std::max({p.drive[0], p.drive[1], p.drive[2]}));
      d.ramps[i].measured.push_back(p.from_asked);
    }
  }
}

std::string patch_name(const vec3& u) {
  if (is_gray(u)) return drive_text(u[0]);
  return svg::number(100 * u[0]) + ", " + svg::number(100 * u[1]) + ", " + svg::number(100 * u[2]) + "\u00a0%";
}

// The mean difference of the readings from what `show` predicts for them, both as bright as `white`: only their
// colours are to tell one prediction from another.
double mean_from(const std::vector<reading>& readings, const vec3& white, const shown_by& show) {
  const double factor = white[1] / show(gray(1))[1];
  summary_of all;
  for (const reading& r : readings) {
    all.add(difference_of(factor * show(r.drive), r.xyz, white), "");
  }
  return all.result().mean;
}

// The same readings as an eye sees them that has adapted from their white to `white`: X, Y and Z each in proportion.
std::vector<reading> adapted(std::vector<reading> readings, const vec3& white) {
  const vec3 from = reading_of(readings, gray(1)).value_or(white);
  for (reading& r : readings) {
    for (std::size_t k = 0; k < 3; ++k) r.xyz[k] *= white[k] / from[k];
  }
  return readings;
}

// Mean differences of the readings from what is predicted for the ways in which the tables may have been loaded.
struct distances {
  double once, none, twice, other_white;
};

// The display without tables: as it was measured, where it was, for a model may be wrong about it.
vec3 read_before(const scene& sc, const vec3& u) {
  constexpr double same = 1e-3;  // of full drive
  const monitor& m = sc.source.display;
  for (std::size_t i = 0; i < m.rgb.rows(); ++i) {
    const vec3 d = row3(m.rgb, i) - u;
    if (std::max({std::abs(d[0]), std::abs(d[1]), std::abs(d[2])}) < same) return row3(m.xyz, i);
  }
  return sc.before(u);
}

distances distances_of(const scene& sc, const std::vector<reading>& readings) {
  const vec3 white = sc.after(gray(1));
  const auto after = [&](const vec3& u) { return sc.after(u); };
  return {.once = mean_from(readings, white, after),
          .none = mean_from(readings, white, [&](const vec3& u) { return read_before(sc, u); }),
          .twice = mean_from(readings, white, [&](const vec3& u) { return sc.after(sc.through(u)); }),
          .other_white = mean_from(adapted(readings, white), white, after)};
}

constexpr double alike = 1.5;  // a difference that model and instrument may well leave

loading loading_of(const distances& d) {
  constexpr double good = 3;  // a display and an instrument repeat themselves better than that
  const auto likely = [&](double other) { return other < d.once && (other <= good || 2 * other < d.once); };
  if (d.once <= good && d.once <= d.none && d.once <= d.twice) return loading::once;
  if (d.once <= alike && d.none < d.once && d.none <= d.twice) return loading::too_mild;
  if (d.other_white <= good && d.other_white < 0.5 * std::min({d.once, d.none, d.twice}))
    return loading::another_white;
  if (likely(d.none) && d.none <= d.twice) return loading::none;
  if (likely(d.twice)) return loading::twice;
  return loading::unclear;
}

const char* words_for(loading loaded, const distances& d) {
  switch (loaded) {
    case loading::once:
      if (d.once > alike) {
        return "The tables are loaded, once, but the display does not do quite what was predicted: it may have "
               "changed since the first measurement, or its channels do not add up. corvantile-kit refine brings the "
               "grays to their target.";
      }
      return "The tables are loaded, once, and the display does what was predicted.";
    case loading::too_mild:
      return "The display does about what was predicted, but the tables change so little that nobody can tell "
             "whether "
             "they are loaded.";
    case loading::another_white:
      return "The tables seem to be loaded, but the white is another than predicted: the picture mode or a colour "
             "control was changed, or a calibration was in effect in one of the two measurements only.";
    case loading::none:
      return "The readings look as if the tables had not been loaded: they agree with the display before the "
             "correction.";
    case loading::twice:
      return "The readings look as if the tables had been applied twice, for example by a profile and by the device.";
    case loading::unclear:
      break;
  }
  return "The display does not do what was predicted for the tables loaded once, twice or not at all: it may have "
         "changed since the first measurement (warm-up, picture mode, brightness), or a calibration was still in "
         "effect. Or its channels do not add up: corvantile-kit refine then brings the grays to their target.";
}

std::string figures_of(const distances& d) {
  const auto figure = [](double v) { return svg::number(v, 2); };
  return "Mean difference of the readings from the prediction for the tables loaded once " + figure(d.once) +
         ", not at all " + figure(d.none) + ", twice " + figure(d.twice) + ", once with the white as it was read " +
         figure(d.other_white) + ".";
}

}  // namespace

void gather_measured(report_data& data, const report_source& source, const std::vector<reading>& readings) {
  const scene sc = make_scene(source);
  const std::vector<reading> read = scaled(sc, readings);
  measured_record m;
  summary_of grays;
  summary_of all;
  summary_of prediction;
  for (const reading& r : read) {
    const vec3 predicted = sc.after(r.drive);
    const double from_asked = sc.difference(r.drive, r.xyz);
    const double from_predicted = difference_of(predicted, r.xyz, sc.asked.white);
    m.patches.push_back({r.drive, asked_xyz(sc.asked, r.drive), predicted, r.xyz, from_asked, from_predicted});
    if (is_gray(r.drive)) grays.add(from_asked, patch_name(r.drive));
    all.add(from_asked, patch_name(r.drive));
    prediction.add(from_predicted, patch_name(r.drive));
  }
  m.grays = grays.result();
  m.all = all.result();
  m.all_from_predicted = prediction.result();
  if (const auto white = reading_of(readings, gray(1))) {
    m.white = white_of(*white, reading_of(readings, gray(0)).value_or(gray(unknown))[1], source.white);
  }
  m.verdict = std::string("Measured, the grays follow the target ") + how_close(m.grays) + ": mean difference " +
              svg::number(m.grays.mean, 2) + ", largest " + svg::number(m.grays.max, 2) + ".";
  const distances d = distances_of(sc, read);
  m.loaded = loading_of(d);
  m.diagnosis = {words_for(m.loaded, d), figures_of(d)};
  add_to_ramps(data.differences, m.patches);
  data.gray.measured = measured_grays(sc, read);
  data.gamut.measured = measured_corners(read);
  data.measured = std::move(m);
}

}  // namespace corvantile
