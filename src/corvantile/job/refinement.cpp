#include "corvantile/job/refinement.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "corvantile/colour/chromaticity.hpp"
#include "corvantile/colour/nonpar_monitor.hpp"
#include "corvantile/numerics/local_line.hpp"
#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/lut.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {
namespace {

// Scatter is averaged over a quarter of the ramp on either side. Less lets noise through; more flattens the ratios of
// a power limit.
constexpr double reach = 0.25;
constexpr std::size_t least_levels = 5;
constexpr std::size_t points = 129;  // of the factors: enough for straight lines between them, to 1e-5

void check_job(const settings& set) {
  if (!matches_gray(set.mode)) {
    throw failure(
        fault::inexpressible,
        "a CV2 job has no gray step to refine; solve it as CV2_1 with white or temp, load that, and measure "
        "again");
  }
  if (set.temp < 0 || (set.wptemp < 0 && set.hwid <= 0)) return;
  throw failure(fault::inexpressible, "a job with wptemp or hwid cannot be refined; solve it without them");
}

// Whether there is light in X, Y and Z. Near black, an instrument may see none.
bool is_lit(const measured_gray& g) {
  return std::ranges::all_of(g.xyz.v, [](double v) { return v > 0 && std::isfinite(v); });
}

void check_grays(const measured_grays& grays) {
  const auto lit = static_cast<std::size_t>(std::ranges::count_if(grays.levels, is_lit));
  if (lit < least_levels) {
    refuse_content(grays.name, std::to_string(lit) + " gray levels with light in X, Y and Z, expected at least " +
                                   std::to_string(least_levels));
  }
  if (grays.levels.back().drive != 1 || !is_lit(grays.levels.back()))
    refuse_content(grays.name, "white at full drive is missing");
}

// The share of its light that each channel at full drive loses if the others are on too. Ramps derived from white
// have this loss in them, and the channel alone is among the extra samples. 0 for ramps that were measured
// themselves.
vec3 losses_within_white(const monitor& m) {
  constexpr double most = 0.4;
  vec3 loss;
  for (std::size_t i = m.rgb.rows() - static_cast<std::size_t>(m.nextra); i < m.rgb.rows(); ++i) {
    const vec3 drive = row3(m.rgb, i);
    for (std::size_t c = 0; c < 3; ++c) {
      vec3 alone;
      alone[c] = 1;
      if (drive != alone || !(m.xyz(i, 1) > m.darklight[1])) continue;
      loss[c] = std::clamp(1 - m.Ymax[c] / (m.xyz(i, 1) - m.darklight[1]), -most, most);
    }
  }
  return loss;
}

// How much faster or slower a derived ramp rises than the channel itself, in logarithms. If the channel alone has the
// light a, it has a (1 - loss a) in a gray, and the derived ramp has m = a (1 - loss a) / (1 - loss).
double slope_of_derived(double loss, double m) {
  const double root = std::sqrt(std::max(0.01, 1 - 4 * loss * (1 - loss) * m));  // 1 - 2 loss a
  return 2 * root / (1 + root);
}

// The grays with the first tables loaded: by the model, and as the display shows them.
class first_grays {
 public:
  first_grays(const correction& first, const std::vector<measured_gray>& grays)
      : first_(first), loss_(losses_within_white(first.measured)) {
    const std::vector<double> s = linspace(0.0, 1.0, first.gray.rows());
    for (std::size_t c = 0; c < 3; ++c) table_[c] = makelut_nostat(s, first.gray.col(c));
    fit(grays);
  }

  vec3 by_model(double s) const {
    return inp2out_vec(first_.display, {{interp(table_[0], s), interp(table_[1], s), interp(table_[2], s)}});
  }
  vec3 ratio(double s) const {
    const double x = std::max(s, darkest_);
    return {{local_line(ratio_[0], x, reach), local_line(ratio_[1], x, reach), local_line(ratio_[2], x, reach)}};
  }
  vec3 shown(double s) const { return elementwise_product(by_model(s), ratio(s)); }

  // What to ask of the model so that the display shows `wanted`, which is as bright as the gray at `s`.
  //
  // If a channel changes and the others stay, its loss to them stays too. But derived ramps have a loss that changes.
  vec3 asked(const vec3& wanted, double s) const {
    const monitor& m = first_.measured;
    const vec3 old = m.XYZ2RGB * (by_model(s) - m.darklight);
    vec3 light = m.XYZ2RGB * (elementwise_quotient(wanted, ratio(s)) - m.darklight);
    for (std::size_t c = 0; c < 3; ++c) {
      if (loss_[c] == 0 || !(old[c] > 0) || !(light[c] > 0)) continue;
      light[c] = old[c] * std::pow(light[c] / old[c], slope_of_derived(loss_[c], std::sqrt(old[c] * light[c])));
    }
    return m.RGB2XYZ * light + m.darklight;
  }

 private:
  void fit(const std::vector<measured_gray>& grays) {
    std::vector<double> drive, weight;
    std::array<std::vector<double>, 3> ratios;
    for (const measured_gray& g : grays) {
      const vec3 r = elementwise_quotient(g.xyz, by_model(g.drive));
      const bool modelled = std::ranges::all_of(r.v, [](double v) { return v > 0 && std::isfinite(v); });
      if (!modelled || !is_lit(g)) continue;
      drive.push_back(g.drive);
      weight.push_back(static_cast<double>(g.readings) * std::cbrt(g.xyz[1] / grays.back().xyz[1]));
      for (std::size_t k = 0; k < 3; ++k) ratios[k].push_back(r[k]);
    }
    darkest_ = drive.front();
    for (std::size_t k = 0; k < 3; ++k) ratio_[k] = {drive, ratios[k], weight};
  }

  const correction& first_;
  vec3 loss_;
  std::array<lut, 3> table_;
  std::array<weighted_samples, 3> ratio_;
  double darkest_ = 0;
};

// The drive at which a rising luminance has the value `wanted`; 0 or 1 if it is out of reach.
template <class Luminance>
double drive_of(double wanted, const Luminance& luminance) {
  double low = 0;
  double high = 1;
  for (int step = 0; step < 40; ++step) {
    const double middle = (low + high) / 2;
    (luminance(middle) < wanted ? low : high) = middle;
  }
  return (low + high) / 2;
}

struct white {
  vec3 base;         // wanted, at Y = 1
  double model = 0;  // luminance to ask of the model
  double shown = 0;  // luminance that the display shows for it
  double at = 1;     // drive at which a gray of the first round is as bright
};

white white_of(const correction& first, const settings& set, const first_grays& grays) {
  white w{.base = xy2xyz(white_of_grays(gray_ramp_of(set), first.display))};
  // The colour changes the luminance, and that the ratios, less in each round.
  for (int round = 0; round < 3; ++round) {
    const double shown = grays.shown(w.at)[1];
    const vec3 asked = grays.asked(shown * w.base, w.at);
    w.model = ramptop_xyz(first.display, chromaticity(asked)).xyz[1];
    w.shown = shown * w.model / asked[1];
    w.at = drive_of(w.model, [&](double s) { return grays.by_model(s)[1]; });
  }
  return w;
}

}  // namespace

refinement refine_grays(const correction& first, const settings& set, const measured_grays& grays) {
  check_job(set);
  check_grays(grays);
  const first_grays round(first, grays.levels);
  const white top = white_of(first, set, round);
  const vec3 dark = round.shown(0);
  const interpolator tone(first.tone);

  const std::vector<double> drive = linspace(0.0, 1.0, points);
  const double promised = top.model / top.shown;
  std::vector<vec3> factor(points, promised * vec3{{1, 1, 1}});  // black is the dark, whatever is asked for
  for (std::size_t i = 1; i < points; ++i) {
    const double share = dark_share(drive[i], set.alpha);
    const vec3 wanted = tone(drive[i]) * top.shown * top.base + share * dark;
    const bool last = i + 1 == points;
    const double at = last ? top.at : drive_of(wanted[1], [&](double s) { return round.shown(s)[1]; });
    const vec3 plain = tone(drive[i]) * top.model * top.base + share * first.display.darklight;
    factor[i] = promised * elementwise_quotient(round.asked(wanted, at), plain);
  }
  refinement made{make_gray_factors(grays.name, drive, factor), {}};
  for (const measured_gray& g : grays.levels) made.smoothed.push_back(round.shown(g.drive));
  return made;
}

}  // namespace corvantile
