#include "corvantile/appraisal/outcome.hpp"

#include <algorithm>
#include <cmath>

#include "corvantile/colour/color_metrics.hpp"
#include "corvantile/colour/nonpar_monitor.hpp"

namespace corvantile {
namespace {

vec2 wanted_white(const correction& result, const settings& set) {
  return matches_gray(result.mode) ? white_of_grays(gray_ramp_of(set), result.display) : set.xytable.white;
}

// The grays that the corrected display is expected to show.
matrix expected_grays(const correction& result, const settings& set) {
  matrix grays = inp2out_mat(result.display, result.gray);
  const std::vector<double> s = linspace(0.0, 1.0, grays.rows());
  for (std::size_t i = 0; i < s.size(); ++i) {
    const vec3 dark = dark_share(s[i], set.alpha) * result.display.darklight;
    set_row3(grays, i, expected(result.factors, {{s[i], s[i], s[i]}}, row3(grays, i), dark));
  }
  return grays;
}

outcome::primaries primaries_of(const correction& result, const settings& set) {
  const two_table_solution& two = *result.two;
  mat3 through_tables;
  for (std::size_t c = 0; c < 3; ++c) {
    vec3 full;
    full[c] = 1;
    through_tables.col[c] = inp2out_vec(two.cmon, full) - two.cmon.darklight;
  }
  return {.asked = set.xytable,
          .reachable = rgb2c_type(two.mod_smon.primaries),
          .shown = rgb2c_type(through_tables),
          .moved = two.distances};
}

// The colours that the display is meant to show for the inputs of a gray ramp. With a gray match, that is the tone
// curve times the white of `grays`, those that it is expected to show, and towards black the dark light (see
// `colortemp_lut`); else the ideal display of the two-table solution.
matrix gray_targets(const correction& result, const settings& set, const matrix& grays) {
  const std::vector<double> s = linspace(0.0, 1.0, grays.rows());
  if (!matches_gray(result.mode)) return syn_inp2out_mat(result.two->mod_smon, in_all_channels(s));
  const vec3 top = row3(grays, grays.rows() - 1);
  const interpolator tone(result.tone);
  matrix targets(grays.rows(), 3);
  for (std::size_t i = 0; i < s.size(); ++i)
    set_row3(targets, i, tone(s[i]) * top + dark_share(s[i], set.alpha) * result.display.darklight);
  return targets;
}

}  // namespace

outcome outcome_of(const correction& result, const settings& set) {
  const std::size_t n = result.gray.rows();
  const matrix grays = expected_grays(result, set);
  outcome figures{.white_before = result.measured.whitepoint,
                  .white_after = row3(grays, n - 1),
                  .black_before = result.measured.darklight,
                  .black_after = row3(grays, 0),
                  .white_wanted = wanted_white(result, set),
                  .gamut = {},
                  .gray_differences = {}};
  if (result.two) figures.gamut = primaries_of(result, set);

  const matrix lab = xyz2lab_mat(grays, figures.white_after);
  figures.gray_differences = deltae2000_mat(xyz2lab_mat(gray_targets(result, set, grays), figures.white_after), lab);
  double sum = 0;
  std::size_t count = 0;
  for (const double d : figures.gray_differences) {
    if (!std::isfinite(d)) continue;
    sum += d;
    ++count;
    figures.gray_largest = std::max(figures.gray_largest, d);
  }
  figures.gray_mean = count > 0 ? sum / static_cast<double>(count) : 0;
  return figures;
}

}  // namespace corvantile
