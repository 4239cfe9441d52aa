#include <algorithm>
#include <cmath>
#include <vector>

#include "corvantile/colour/nonpar_monitor.hpp"
#include "corvantile/matching/matching.hpp"
#include "corvantile/utils/array_helpers.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {
namespace {

// The luminance of a primaries matrix's white.
double white_luminance(const mat3& m) { return m(1, 0) + m(1, 1) + m(1, 2); }

// The largest row sum. NaN does not count.
double largest_row_sum(const mat3& m) {
  vec3 sums;
  for (std::size_t i = 0; i < 3; ++i) sums[i] = m(i, 0) + m(i, 1) + m(i, 2);
  return largest(sums.v);
}

bool has_negative_entry(const mat3& m) {
  return std::ranges::any_of(m.col,
                             [](const vec3& c) { return std::ranges::any_of(c.v, [](double e) { return e < 0; }); });
}

adjusted_primaries within_gamut(const monitor& mon, const mat3& wanted, const gspec& spec) {
  const auto c = rgb2c_type(mon.RGB2XYZ);
  return adjust_primaries(wanted, {c.red, c.green, c.blue}, spec.boundary_tol);
}

// The monitor's inverse tone curves, sampled at the linear values `x`. For a `minslope` above 0, the forward curves
// are sampled, smoothed with that least slope (in 5 pieces, whatever the monitor's own number) and then inverted.
matrix post_tables(const monitor& mon, const std::vector<double>& x, double minslope) {
  const matrix gray = in_all_channels(x);
  if (!(minslope > 0)) return mon2inp_mat(mon, gray);

  const matrix forward = inp2mon_mat(mon, gray);
  matrix post(x.size(), 3);
  for (std::size_t c = 0; c < 3; ++c) {
    const lut inverse = makelut_nostat(iba(x, forward.col(c), 5, minslope), x);
    std::ranges::transform(x, post.col(c).begin(), interpolator(inverse));
  }
  return post;
}

}  // namespace

two_table_solution twolutsolution(const monitor& mon, const chromaticity_table& target, const gspec& spec,
                                  std::size_t tlen) {
  two_table_solution sol;
  const mat3 wanted = c2rgb_type(target);

  // Primaries with a white of luminance 1: those that the monitor can show, or the target's own ...
  const bool clips = spec.mapping == gamut_mapping::clip;
  const adjusted_primaries adjusted = clips ? adjusted_primaries{wanted, {}} : within_gamut(mon, wanted, spec);
  sol.distances = adjusted.distances;
  mat3 Ma = adjusted.rgb / white_luminance(adjusted.rgb);

  // ... and then of the wanted fraction of the brightest gray
  sol.top = ramptop_xyz(mon, target.white);
  Ma = Ma * sol.top.xyz[1] * spec.lumfrac;

  mat3 K = mon.XYZ2RGB * Ma;
  if (!clips && has_negative_entry(K)) sol.status = 0;
  const double f = largest_row_sum(K) / (1 - spec.rowsum_margin);
  if (f > 1) {
    K = K / f;
    Ma = Ma / f;
  }

  const std::vector<double> x = linspace(0.0, 1.0, tlen);
  std::vector<double> tone(tlen);
  if (isvalid_lut(spec.lut)) {
    std::ranges::transform(x, tone.begin(), interpolator(spec.lut));
  } else {
    std::ranges::transform(x, tone.begin(), [&](double v) { return std::pow(v, spec.gamma); });
  }
  const lut curve = isvalid_lut(spec.lut) ? spec.lut : makelut_nostat(x, tone);
  const mat3 reference = wanted * (white_luminance(Ma) / white_luminance(wanted));
  sol.ref_smon = make_synthetic_monitor("reference target", reference, curve, mon.darklight);
  sol.mod_smon = make_synthetic_monitor("modified target", Ma, curve, mon.darklight);

  sol.prelut = in_all_channels(tone);
  sol.postlut = post_tables(mon, x, spec.minslope);
  sol.matrix = K;
  front_end fe;
  set3chluts(fe, &sol.prelut, &sol.postlut, &sol.matrix);
  fe.clips = clips;
  sol.cmon = monwfe(mon, fe);
  sol.cmon.name = cut("frontend on " + mon.name, longest_name);
  return sol;
}

}  // namespace corvantile
