#include "corvantile/colour/nonpar_monitor.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "corvantile/colour/chromaticity.hpp"
#include "corvantile/numerics/neldmead.hpp"

namespace corvantile {
namespace {

// The angle that a search starts from. A negative value or NaN means full drive, like one above 1.
double start_of(double value) { return angle_of(value, std::numbers::pi / 2); }

template <class Cost>
inversion invert(const Cost& cost, const vec3& start, double enough) {
  const auto best = neldermead(cost, std::array{start_of(start[0]), start_of(start[1]), start_of(start[2])},
                               {.scale = 0.05, .tol = 1e-14, .maxit = 100000, .enough = enough});
  return {{{square_of_sine(best.xmin[0]), square_of_sine(best.xmin[1]), square_of_sine(best.xmin[2])}}, best.fmin};
}

constexpr double in_full = nm_settings{}.enough;

inversion out2inp(const prepared_monitor& mon, const vec3& xyz, const std::optional<vec3>& start = {},
                  double enough = in_full) {
  return invert(cost2i{mon, xyz}, start ? *start : mon.mon2inp(mon.source().XYZ2RGB * xyz), enough);
}

// Bisects for the largest scale at which a colour is reachable.
class scale_search {
 public:
  static constexpr int steps = 28;
  double scale() const { return k_; }
  bool any_reached() const { return lo_ > lowest; }
  void step(bool reached) {
    (reached ? lo_ : hi_) = k_;
    k_ = (lo_ + hi_) / 2;
  }

 private:
  static constexpr double lowest = 0.1;
  double lo_ = lowest;
  double hi_ = 2.0;
  double k_ = 1.05;
};

bool reaches(const prepared_monitor& mon, const vec3& xyz) {
  return out2inp(mon, xyz, {}, reachable).fval < reachable;
}

// Only whether the first 27 trials are reachable matters, so they end as soon as they know.
scale_search all_but_last_step(const prepared_monitor& mon, const vec3& base) {
  scale_search k;
  for (int i = 1; i < scale_search::steps; ++i) k.step(reaches(mon, k.scale() * base));
  return k;
}

// The last trial runs in full, because its drive values are the result.
ramp_top last_step(const prepared_monitor& mon, const vec3& base, scale_search k) {
  const inversion last = out2inp(mon, k.scale() * base);
  k.step(last.fval < reachable);
  return {last.value, inp2mon_vec(mon.source(), last.value), k.scale() * base, k.any_reached()};
}

ramp_top ramptop(const prepared_monitor& mon, const vec3& base) {
  return last_step(mon, base, all_but_last_step(mon, base));
}

// The monitor's white luminance times the XYZ of a chromaticity at Y = 1.
vec3 base_of_temperature(const monitor& mon, double T) { return mon.whitepoint[1] * blackbody_color(T); }
vec3 base_of_chromaticity(const monitor& mon, const vec2& xy) { return xy2xyz(xy, mon.whitepoint[1]); }
vec3 base_of_chromaticity(const monitor& mon, const vec3& xyz) {
  return mon.whitepoint[1] * vec3{{xyz[0] / xyz[1], 1.0, xyz[2] / xyz[1]}};
}

// A ramp top before its last trial.
struct unfinished_top {
  vec3 base;
  scale_search k;
};

// Minus the luminance of the ramp top at the position in the swath that an angle stands for. `latest` keeps the top
// of the latest evaluation.
struct neglum {
  const prepared_monitor& mon;
  const locus_swath& swath;
  unfinished_top& latest;

  double operator()(std::span<const double> a) const {
    const double t = swath.tmin + (swath.tmax - swath.tmin) * square_of_sine(a[0]);
    const vec2 q = swath.p + t * swath.ray;
    const vec3 base = base_of_chromaticity(mon.source(), q);
    latest = {base, all_but_last_step(mon, base)};
    // Drive values are not needed here, so even the last trial may end as soon as it knows.
    scale_search k = latest.k;
    k.step(reaches(mon, k.scale() * base));
    return -(k.scale() * base)[1];
  }
};

ramp_top bcgtw(const prepared_monitor& mon, double T, double hwid) {
  const locus_swath swath = cct_segment(T, hwid);
  unfinished_top latest;
  // A quarter of the way: the angle whose squared sine is exactly 0.25, an ulp from the rounded pi / 6.
  constexpr double quarter = 0.5235987755982989;
  neldermead(neglum{mon, swath, latest}, std::array{quarter}, {.scale = 0.001, .tol = 1e-14, .maxit = 10000});
  return last_step(mon, latest.base, latest.k);
}

// A display as the searches take it. Behind a front end that clips there are flat regions, in which a search gets
// lost. So the chain is searched without the clip, and what the clip changes is searched again behind it.
class searched_display {
 public:
  explicit searched_display(const monitor& mon) : shown_(mon) {
    if (!mon.composite || !mon.fe.clips) return;
    unclipped_ = mon;
    unclipped_->fe.clips = false;
    chain_.emplace(*unclipped_);
    front_end_.emplace(mon.fe);
  }
  searched_display(const searched_display&) = delete;  // its parts point to each other
  searched_display& operator=(const searched_display&) = delete;

  const prepared_monitor& chain() const { return chain_ ? *chain_ : shown_; }
  const prepared_monitor& shown() const { return shown_; }

  /// Whether the clip changes what these inputs show.
  bool clips(const vec3& inp) const {
    return front_end_ && !std::ranges::all_of(front_end_->linear(inp).v, [](double v) { return v >= 0 && v <= 1; });
  }

 private:
  prepared_monitor shown_;
  std::optional<monitor> unclipped_;
  std::optional<prepared_monitor> chain_;
  std::optional<prepared_front_end> front_end_;
};

// What `search` finds on the chain, or behind the clip if that changes it.
template <class Search>
ramp_top top_on(const searched_display& display, const Search& search) {
  const ramp_top top = search(display.chain());
  return display.clips(top.inp) ? search(display.shown()) : top;
}

bool is_away(const gray_level& level) { return level.left > reachable; }

// Another start for a level that is still away. A colour out of reach should not change in its last bits, so only a
// much closer result is taken.
void search_from(const prepared_monitor& mon, gray_level& level, const std::optional<vec3>& start) {
  if (!is_away(level)) return;
  const inversion again = out2inp(mon, level.target, start);
  if (again.fval < level.left / 2) {
    level.inp = again.value;
    level.left = again.fval;
  }
}

// From the top down first, so that each level continues from one that may have been mended; then from black up.
void search_again(const prepared_monitor& mon, std::vector<gray_level>& levels) {
  for (std::size_t i = levels.size() - 1; i-- > 0;) {
    search_from(mon, levels[i], {});
    search_from(mon, levels[i], levels[i + 1].inp);
  }
  for (std::size_t i = 1; i + 1 < levels.size(); ++i) search_from(mon, levels[i], levels[i - 1].inp);
}

// Searches the levels that the clip changes once more, behind it. Their distance is then that of what is shown.
void search_behind_clip(const searched_display& display, std::vector<gray_level>& levels, bool restart) {
  bool any = false;
  for (std::size_t i = levels.size() - 1; i-- > 0;) {
    gray_level& level = levels[i];
    if (!display.clips(level.inp)) continue;
    any = true;
    const prepared_monitor& shown = display.shown();
    level.left = dist2(shown.inp2out(level.inp[0], level.inp[1], level.inp[2]), level.target);
    const inversion again = out2inp(shown, level.target, level.inp);
    if (again.fval < level.left) level = {level.target, again.value, again.fval};
  }
  if (any && restart) search_again(display.shown(), levels);
}

// How the factors change the grays of a ramp: by their colour, and relative to white.
class relative_factors {
 public:
  explicit relative_factors(const gray_factors& factors) : factors_(factors), white_(factors_at(factors, 1)) {}
  vec3 at(double s) const { return factors_at(factors_, s) / white_[1]; }
  vec3 at_white() const { return white_ / white_[1]; }

 private:
  const gray_factors& factors_;
  vec3 white_;
};

gray_search gray_ramp(matrix& tab, const searched_display& display, const ramp_top& top, const lut& curve, double g0,
                      bool restart, const gray_factors& factors) {
  const prepared_monitor& mon = display.chain();
  const std::size_t n = tab.rows();
  const interpolator tone(curve);
  const relative_factors corrected(factors);
  const vec3 plain_top = factors.empty() ? top.xyz : elementwise_quotient(top.xyz, corrected.at_white());
  const auto target = [&](std::size_t i) {
    const double s = static_cast<double>(i) / static_cast<double>(n - 1);
    const vec3 plain = tone(s) * plain_top + dark_share(s, g0) * mon.source().darklight;
    return factors.empty() ? plain : elementwise_product(corrected.at(s), plain);
  };
  std::vector<gray_level> levels(n);
  levels[n - 1] = {top.xyz, top.inp, 0};
  for (std::size_t i = n - 1; i-- > 0;) {
    const vec3 xyz = target(i);
    const inversion found = out2inp(mon, xyz, levels[i + 1].inp);
    levels[i] = {xyz, found.value, found.fval};
  }
  if (restart) search_again(mon, levels);
  search_behind_clip(display, levels, restart);
  for (std::size_t i = 0; i < n; ++i) set_row3(tab, i, levels[i].inp);
  return {top, std::move(levels)};
}

// The brightest colour that is `base` once divided by the factors.
ramp_top top_for(const searched_display& display, const vec3& base, const gray_factors& factors) {
  const vec3 wanted = factors.empty() ? base : elementwise_product(relative_factors(factors).at_white(), base);
  return top_on(display, [&](const prepared_monitor& mon) { return ramptop(mon, wanted); });
}

}  // namespace

inversion out2inp(const monitor& mon, const vec3& xyz, const std::optional<vec3>& start) {
  return out2inp(prepared_monitor(mon), xyz, start);
}

inversion out2mon(const monitor& mon, const vec3& xyz, const std::optional<vec3>& start) {
  const prepared_monitor prepared(mon);
  return invert(cost2m{prepared, xyz}, start ? *start : mon.XYZ2RGB * xyz, in_full);
}

ramp_top ramptop_temp(const monitor& mon, double T) {
  return top_for(searched_display(mon), base_of_temperature(mon, T), {});
}

ramp_top ramptop_xyz(const monitor& mon, const vec2& xy) {
  return top_for(searched_display(mon), base_of_chromaticity(mon, xy), {});
}
ramp_top ramptop_xyz(const monitor& mon, const vec3& xyz) {
  return top_for(searched_display(mon), base_of_chromaticity(mon, xyz), {});
}

static ramp_top brightest_across(const searched_display& display, double T, double hwid) {
  return top_on(display, [&](const prepared_monitor& mon) { return bcgtw(mon, T, hwid); });
}
ramp_top bcgtw(const monitor& mon, double T, double hwid) { return brightest_across(searched_display(mon), T, hwid); }

double dark_share(double s, double g0) {
  if (!(s <= g0)) return 0;
  return s == 0 ? 1.0 : (std::cos(std::numbers::pi * s / g0) + 1) / 2;
}

lut make_gamma_table(double gamma, int n) {
  const std::vector<double> s = linspace(0.0, 1.0, static_cast<std::size_t>(n));
  std::vector<double> y(s.size());
  std::ranges::transform(s, y.begin(), [gamma](double v) { return std::pow(v, gamma); });
  return makelut_nostat(s, y);
}

gray_search colortemp_lut(matrix& tab, const monitor& mon, double T, const lut& curve, double g0, double hwid,
                          bool restart, const gray_factors& factors) {
  const searched_display display(mon);
  const ramp_top top =
      hwid > 0 ? brightest_across(display, T, hwid) : top_for(display, base_of_temperature(mon, T), factors);
  return gray_ramp(tab, display, top, curve, g0, restart, factors);
}

static gray_search lut_of_base(matrix& tab, const monitor& mon, const vec3& base, const lut& curve, double g0,
                               bool restart, const gray_factors& factors) {
  const searched_display display(mon);
  return gray_ramp(tab, display, top_for(display, base, factors), curve, g0, restart, factors);
}
gray_search chromaticity_lut(matrix& tab, const monitor& mon, const vec2& xy, const lut& curve, double g0,
                             bool restart, const gray_factors& factors) {
  return lut_of_base(tab, mon, base_of_chromaticity(mon, xy), curve, g0, restart, factors);
}
gray_search chromaticity_lut(matrix& tab, const monitor& mon, const vec3& xyz, const lut& curve, double g0,
                             bool restart) {
  return lut_of_base(tab, mon, base_of_chromaticity(mon, xyz), curve, g0, restart, {});
}

}  // namespace corvantile
