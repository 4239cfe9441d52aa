#include "numerics/monotone_smoothing.hpp"

#include <algorithm>
#include <array>
#include <cmath>

#include "numerics/neldmead.hpp"
#include "numerics/packed_curve.hpp"
#include "numerics/polynomials.hpp"

namespace corvantile {

static std::vector<double> control_knots(std::size_t npts) {
  std::vector<double> t(npts);
  for (std::size_t i = 0; i < npts; ++i) t[i] = static_cast<double>(i) / static_cast<double>(npts - 1);
  return t;
}

monotone_fit::monotone_fit(std::span<const double> xp, std::span<const double> yp, std::size_t npts, double mslope)
    : xp_(xp), yp_(yp), mslope_(mslope), knots_(control_knots(npts)), spline_(knots_), slopes_(npts) {
  const std::size_t pieces = npts - 1;
  coefs_.resize(pieces * piece_length);
  intervals_.reserve(pieces);
  for (std::size_t j = 0; j < pieces; ++j) {
    const double h = knots_[j + 1] - knots_[j];
    intervals_.push_back({.width = h, .three_width = 3 * h, .square = h * h, .cube = h * h * h});
  }
  samples_.reserve(xp.size());
  for (std::size_t i = 0; i < xp.size(); ++i) {
    // The same choice as evaluation makes: the left piece at a knot, the end pieces beyond the ends.
    const auto right = std::lower_bound(knots_.begin() + 1, knots_.end() - 1, xp[i]);
    const auto piece = static_cast<std::size_t>(right - knots_.begin()) - 1;
    samples_.push_back({piece * piece_length, xp[i] - knots_[piece], yp[i]});
  }
}

std::vector<double> monotone_fit::starting_point() const {
  const polynomial slope = polyder(polyfit(xp_, yp_, 5));
  std::vector<double> p0(knots_.size());
  for (std::size_t i = 0; i < p0.size(); ++i) {
    double s = polyval(slope, knots_[i]);
    if (s < mslope_) s = mslope_;
    p0[i] = std::sqrt(s - mslope_);
  }
  return p0;
}

ppoly monotone_fit::make_func(std::span<const double> p) const {
  std::vector<double> d(p.size());
  spline_.slopes(p, d);
  const ppoly g = hermite2ppoly(knots_, p, d);
  return ppint(mslope_ + pp_to_power(g, 2));
}

double monotone_fit::cost(std::span<const double> p) {
  spline_.slopes(p, slopes_);
  double start = 0.0;  // value of the curve at the piece's left knot
  for (std::size_t j = 0; j < intervals_.size(); ++j) {
    // g, the Hermite cubic of this interval
    const auto& [h, three_h, h2, h3] = intervals_[j];
    const double a = p[j + 1] - p[j] - h * slopes_[j];
    const double b = slopes_[j + 1] - slopes_[j];
    const std::array g{p[j], slopes_[j], (three_h * a - h2 * b) / h3, (h * b - 2 * a) / h3};
    // mslope + g^2, integrated
    double* f = &coefs_[j * piece_length];
    f[0] = start;
    f[1] = mslope_ + g[0] * g[0];
    f[2] = (g[0] * g[1] + g[1] * g[0]) / 2;
    f[3] = (g[0] * g[2] + g[1] * g[1] + g[2] * g[0]) / 3;
    f[4] = (g[0] * g[3] + g[1] * g[2] + g[2] * g[1] + g[3] * g[0]) / 4;
    f[5] = (g[1] * g[3] + g[2] * g[2] + g[3] * g[1]) / 5;
    f[6] = (g[2] * g[3] + g[3] * g[2]) / 6;
    f[7] = g[3] * g[3] / 7;
    start = horner8(f, h);
  }
  double sum = 0;
  for (const sample& s : samples_) {
    const double residual = s.y - horner8(&coefs_[s.first_coef], s.t);
    sum += residual * residual;
  }
  return sum;
}

ppoly pp_iba(std::span<const double> x, std::span<const double> y, std::optional<int> n, double minslope) {
  const std::size_t npts = n && *n >= 0 ? static_cast<std::size_t>(*n) + 1 : 6;
  monotone_fit fit(x, y, npts, minslope);
  const auto best = neldermead([&](std::span<const double> p) { return fit.cost(p); },
                               std::span<const double>(fit.starting_point()), {.tol = 1e-14});
  const ppoly f = fit.make_func(best.xmin);
  return pp_over_real(f, ppval(f, 1.0));
}

}  // namespace corvantile
