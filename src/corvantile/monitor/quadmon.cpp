#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <optional>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "corvantile/monitor/monitor.hpp"
#include "corvantile/numerics/linsolv.hpp"
#include "corvantile/numerics/monotone_smoothing.hpp"
#include "corvantile/numerics/neldmead.hpp"
#include "corvantile/numerics/nonlinfit.hpp"
#include "corvantile/utils/array_io.hpp"
#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {
namespace {

// The samples of one channel's ramp, zero drive first.
struct channel_ramp {
  const measurements& from;
  std::size_t last;  // row of the zero-drive sample; the ramp is above it

  double drive(std::size_t i, std::size_t c) const { return from.data(last - i, c); }
  double colour(std::size_t i, std::size_t k) const { return from.data(last - i, 3 + k); }
};

channel_ramp ramp_of_channel(const measurements& samples, std::size_t c) {
  const auto n = static_cast<std::size_t>(samples.nramp);
  return {samples, (c + 1) * n + n - 1};  // the white ramp comes first
}

void require_finite(const measurements& samples) {
  const auto in_ramps = ramp_count(samples.version) * static_cast<std::size_t>(samples.nramp);
  for (std::size_t row = 0; row < samples.data.rows(); ++row) {
    const std::size_t columns = row < in_ramps ? 6 : 3;  // only the drive values of extra samples are used
    for (std::size_t c = 0; c < columns; ++c) {
      if (std::isfinite(samples.data(row, c))) continue;
      static constexpr std::array names{"R", "G", "B", "X", "Y", "Z"};
      refuse_content(samples.name, sample_text(samples, row) + ": " + names[c] + " is" +
                                       free_format(samples.data(row, c)) + ", expected a finite number");
    }
  }
}

bool is_finite(const ppoly& pp) {
  return std::ranges::all_of(pp.polys, [](const polynomial& p) {
    return std::ranges::all_of(p.coef, [](double c) { return std::isfinite(c); });
  });
}

// If one primary is a mixture of the other two, they span no gamut and their matrix has no inverse.
void require_gamut(const monitor& mon) {
  const auto& [r, g, b] = mon.RGB2XYZ.col;
  const double edges = std::sqrt(dist2(r, {}) * dist2(g, {}) * dist2(b, {}));
  constexpr double flat = 1e-9;  // relative; real displays have about 0.1
  if (!(std::abs(determinant(mon.RGB2XYZ)) > flat * edges)) {
    refuse_content(mon.name,
                   "the three primaries lie on one line of the chromaticity diagram; expected ramps of a red, a "
                   "green and a blue channel");
  }
}

struct component_fit {
  ppoly curve;
  double a;  // of the quadratic (1 - a) m + a m^2
};

// How a channel's X or Z (`ratio`, relative to full drive) grows with the monitor values `m`. At zero drive, the
// curve takes the ratio as 0 and the quadratic takes it as measured.
component_fit fit_component(std::span<const double> m, std::vector<double> ratio, int numsegs) {
  component_fit identity{makeppoly({0.0, 1.0}, {makepoly({0.0, 1.0})}), 0.0};
  if (!std::ranges::all_of(ratio, [](double r) { return std::isfinite(r); })) return identity;
  const auto best = neldermead(nlerr{m, ratio}, std::array{0.0}, {.scale = 1.0, .tol = 1e-12, .maxit = 10000});
  ratio[0] = 0.0;
  component_fit fit{pp_iba(m, ratio, numsegs), best.xmin[0]};
  return is_finite(fit.curve) ? fit : identity;
}

double full_drive_of(const measurements& samples) {
  double largest = samples.data(0, 0);
  for (std::size_t c = 0; c < 3; ++c) largest = std::max(largest, std::ranges::max(samples.data.col(c)));
  if (!(largest > 0)) refuse_content(samples.name, "no drive value is above 0, so full drive is unknown");
  return largest;
}

void set_samples(monitor& mon, const measurements& samples, double full_drive) {
  const std::size_t rows = samples.data.rows();
  mon.rgb = matrix(rows, 3);
  mon.xyz = matrix(rows, 3);
  for (std::size_t c = 0; c < 3; ++c) {
    std::ranges::transform(samples.data.col(c), mon.rgb.col(c).begin(), [&](double d) { return d / full_drive; });
    std::ranges::copy(samples.data.col(3 + c), mon.xyz.col(c).begin());
  }
}

vec3 mean_dark_light(const matrix& xyz, std::size_t ramps, std::size_t nramp) {
  vec3 dark;
  for (std::size_t k = 0; k < 3; ++k) {
    double sum = 0;
    for (std::size_t r = 1; r <= ramps; ++r) sum += xyz(r * nramp - 1, k);
    dark[k] = sum / static_cast<double>(ramps);
  }
  return dark;
}

void require_white(const measurements& samples, const vec3& white, const vec3& dark) {
  if (white[1] > dark[1] && white[0] + white[1] + white[2] > 0) return;
  refuse_content(samples.name, sample_text(samples, 0) + ": X, Y, Z are" + free_format(white[0]) +
                                   free_format(white[1]) + free_format(white[2]) +
                                   ", expected a white brighter than the dark");
}

// X and Z of a ramp without the dark light, over their values at full drive. Unlike `rampx` and `rampz`, they keep
// what was measured at zero drive.
struct measured_ratios {
  std::vector<double> x, z;
};

measured_ratios set_ramp(monitor& mon, const measurements& samples, std::size_t c, double full_drive) {
  const auto nramp = static_cast<std::size_t>(samples.nramp);
  const channel_ramp ramp = ramp_of_channel(samples, c);
  const auto light = [&](std::size_t i, std::size_t k) { return ramp.colour(i, k) - mon.darklight[k]; };
  const vec3 full{{light(nramp - 1, 0), light(nramp - 1, 1), light(nramp - 1, 2)}};
  mon.Xmax[c] = full[0];
  mon.Ymax[c] = full[1];
  mon.Zmax[c] = full[2];
  mon.RGB2XYZ.col[c] = full;
  if (!(full[1] > 0)) {
    refuse_content(samples.name,
                   std::string("the ") + channel_names[c] + " channel gets no brighter than the dark: Y is" +
                       free_format(ramp.colour(nramp - 1, 1)) + " at the first level of its ramp and" +
                       free_format(mon.darklight[1]) + " in the dark; ramps run from full drive down to zero");
  }

  measured_ratios ratios{std::vector<double>(nramp), std::vector<double>(nramp)};
  for (std::size_t i = 0; i < nramp; ++i) {
    mon.rampin(i, c) = ramp.drive(i, c) / full_drive;
    mon.rampy(i, c) = light(i, 1) / full[1];
    ratios.x[i] = light(i, 0) / full[0];
    ratios.z[i] = light(i, 2) / full[2];
  }
  std::ranges::copy(ratios.x, mon.rampx.col(c).begin());
  std::ranges::copy(ratios.z, mon.rampz.col(c).begin());
  mon.rampy(0, c) = mon.rampx(0, c) = mon.rampz(0, c) = 0.0;
  return ratios;
}

void fit_curves(monitor& mon, const std::string& name, std::size_t c, measured_ratios ratios) {
  const auto rampy = std::as_const(mon.rampy).col(c);
  mon.inpcurve[c] = pp_iba(mon.rampin.col(c), rampy, mon.numsegs, mon.minslope);
  if (!is_finite(mon.inpcurve[c])) {
    refuse_content(name, std::string("no tone curve fits the ") + channel_names[c] +
                             " ramp; expected luminances that fall from full drive down to zero");
  }
  component_fit x = fit_component(rampy, std::move(ratios.x), mon.numsegs);
  mon.xcurve[c] = std::move(x.curve);
  mon.nX[c] = x.a;
  component_fit z = fit_component(rampy, std::move(ratios.z), mon.numsegs);
  mon.zcurve[c] = std::move(z.curve);
  mon.nZ[c] = z.a;
}

}  // namespace

monitor makemonitor(const measurements& samples, std::optional<int> numsegs, double minslope) {
  const std::size_t ramps = ramp_count(samples.version);
  const auto nramp = static_cast<std::size_t>(samples.nramp);
  monitor mon;
  mon.name = samples.name.empty() ? "monitor" : cut(samples.name, longest_name);
  mon.numsegs = numsegs.value_or(5);
  mon.minslope = minslope;
  mon.nramp = samples.nramp;
  mon.nextra = static_cast<int>(samples.data.rows() - ramps * nramp);
  require_finite(samples);
  const double full_drive = full_drive_of(samples);
  require_falling_ramps(samples);

  set_samples(mon, samples, full_drive);
  mon.darklight = mean_dark_light(mon.xyz, ramps, nramp);
  mon.whitepoint = row3(mon.xyz, 0);
  require_white(samples, mon.whitepoint, mon.darklight);

  mon.rampin = mon.rampy = mon.rampx = mon.rampz = matrix(nramp, 3);
  for (std::size_t c = 0; c < 3; ++c) fit_curves(mon, samples.name, c, set_ramp(mon, samples, c, full_drive));
  require_gamut(mon);
  mon.XYZ2RGB = inv(mon.RGB2XYZ);
  return mon;
}

void dumpmon(std::ostream& out, const monitor& mon) {
  std::string text = std::string(trim(mon.name)) + '\n';
  if (mon.composite) text += "Composite\n" + prtmat_real(mon.fe.matrix, "with matrix: ");
  const auto triple = [&](const char* label, const vec3& v) {
    text +=
        label + fixed_field(v[0], 0, 8) + "   " + fixed_field(v[1], 0, 8) + "   " + fixed_field(v[2], 0, 8) + '\n';
  };
  triple("whitepoint = ", mon.whitepoint);
  triple("darklight = ", mon.darklight);
  triple("Xmax = ", mon.Xmax);
  triple("Ymax = ", mon.Ymax);
  triple("Zmax = ", mon.Zmax);
  triple("nX = ", mon.nX);
  triple("nZ = ", mon.nZ);
  const auto rows = [&](const char* label, const mat3& m) {
    text += std::string(label) + '\n';
    for (std::size_t i = 0; i < 3; ++i)
      text += free_format(m(i, 0)) + free_format(m(i, 1)) + free_format(m(i, 2)) + '\n';
  };
  rows("RGB2XYZ:", mon.RGB2XYZ);
  rows("XYZ2RGB:", mon.XYZ2RGB);
  out << text;
}

std::array<double, 5> fixlowend(const std::array<double, 6>& x, const std::array<double, 6>& y) {
  const double s = (y[5] - y[4]) / (x[5] - x[4]);
  const double x2 = x[4] * x[4];
  const double x3 = x2 * x[4];
  const double det = x2 * x2;  // of [x^2, x^3; 2x, 3x^2]
  const double A = (3 * x2 * y[4] - x3 * s) / det;
  const double B = (x2 * s - 2 * x[4] * y[4]) / det;
  std::array<double, 5> out{};
  for (std::size_t i = 0; i < out.size(); ++i) out[i] = A * (x[i] * x[i]) + B * (x[i] * x[i] * x[i]);
  return out;
}

}  // namespace corvantile
