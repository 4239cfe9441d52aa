#include "corvantile/job/correction.hpp"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <string>
#include <utility>
#include <vector>

#include "corvantile/colour/chromaticity.hpp"
#include "corvantile/colour/nonpar_monitor.hpp"
#include "corvantile/job/judgements.hpp"
#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/lut.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {
namespace {

double cpu_seconds() { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

// Planck's law overflows or underflows at extreme temperatures: these have no colour.
void require_black_body(const char* key, double value, double T) {
  const vec3 b = blkbod(T);
  if (std::isfinite(b[0]) && std::isfinite(b[2])) return;
  refuse_setting(key, shortest(value), "a black body has no finite colour at" + free_format(T) + " K");
}

void check_temperatures(const settings& set, const monitor& mon) {
  const gray_temperatures at = temperatures_of(gray_ramp_of(set), mon);
  if (at.ramp) require_black_body("temp", set.temp, *at.ramp);
  if (at.top) require_black_body("wptemp", set.wptemp, *at.top);
}

void check_gamut(const settings& set, const monitor& mon) {
  const auto c = rgb2c_type(mon.RGB2XYZ);
  const double radius = inradius({xy2uv_vec(c.red), xy2uv_vec(c.green), xy2uv_vec(c.blue)});
  if (set.boundary_tol < radius || set.gamut_mapping == gamut_mapping::clip) return;
  refuse_setting("boundary_tol", shortest(set.boundary_tol),
                 "must be below" + free_format(radius) + ", or nothing is left of the monitor's gamut");
}

gspec targets_of(const settings& set, const std::optional<tone_samples>& tone) {
  return {.boundary_tol = set.boundary_tol,
          .lumfrac = set.lumfrac,
          .rowsum_margin = set.rowsum_margin,
          .gamma = set.gamma,
          .lut = tone ? tone_curve(*tone, set.numsegs) : make_gamma_table(set.gamma, set.tlen),
          .mapping = set.gamut_mapping,
          .minslope = set.minslope};
}

// The composition of two sampled tables: first `inner`, then `outer`.
matrix fold(const matrix& outer, const matrix& inner) {
  const std::vector<double> x = linspace(0.0, 1.0, outer.rows());
  matrix folded(inner.rows(), 3);
  for (std::size_t c = 0; c < 3; ++c) {
    const lut table = makelut_nostat(x, outer.col(c));
    std::ranges::transform(inner.col(c), folded.col(c).begin(), interpolator(table));
  }
  return folded;
}

void solve_two_tables(const settings& set, const gspec& spec, correction& result) {
  const double start = cpu_seconds();
  result.two = twolutsolution(result.measured, set.xytable, spec, static_cast<std::size_t>(set.tlen));
  result.two_seconds = cpu_seconds() - start;
  result.display = result.two->cmon;
  append(result.warnings, judge_two_tables(set, *result.two));
}

// The factors were measured for one white. A shaded ramp or a swath has others.
void check_factors(const settings& set) {
  if (set.temp < 0) return;
  constexpr const char* why = "cannot be combined with grayfile, because its factors are for a single white";
  if (set.wptemp >= 0) refuse_setting("wptemp", shortest(set.wptemp), why);
  if (set.hwid > 0) refuse_setting("hwid", shortest(set.hwid), why);
}

void match_gray(const settings& set, const gspec& spec, correction& result) {
  result.gray = matrix(static_cast<std::size_t>(set.tlen), 3);
  const double start = cpu_seconds();
  gray_ramp_params params = gray_ramp_of(set);
  params.factors = result.factors;
  const gray_match match = cv1(result.display, params, spec.lut, result.gray);
  result.gray_seconds = cpu_seconds() - start;
  result.undefined_row = match.undefined_row;
  append(result.warnings, judge_grays(set, result.display, match));
  if (result.two) result.two->prelut = fold(result.two->prelut, result.gray);
}

}  // namespace

correction solve(const settings& set, const measurements& samples, const std::optional<tone_samples>& tone,
                 const gray_factors& factors) {
  check_settings(set, !tone);
  if (matches_gray(set.mode) && !factors.empty()) check_factors(set);
  correction result;
  result.mode = set.mode;
  result.measured = makemonitor(samples, set.numsegs, set.minslope);
  if (matches_gray(set.mode)) check_temperatures(set, result.measured);
  if (solves_two_tables(set.mode)) check_gamut(set, result.measured);
  const gspec spec = targets_of(set, tone);
  result.warnings = judge(samples, result.measured);

  result.display = result.measured;
  if (solves_two_tables(set.mode)) solve_two_tables(set, spec, result);
  if (matches_gray(set.mode)) {
    result.factors = factors;
    match_gray(set, spec, result);
  } else {
    result.gray = in_all_channels(linspace(0.0, 1.0, static_cast<std::size_t>(set.tlen)));
  }
  result.tone = spec.lut;
  return result;
}

}  // namespace corvantile
