#include "corvantile/numerics/monotone_smoothing.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "corvantile/numerics/neldmead.hpp"
#include "corvantile/numerics/packed_curve.hpp"
#include "corvantile/numerics/polynomials.hpp"

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
  // As in evaluation: a knot belongs to the piece on its left, and the end pieces continue beyond the ends.
  const auto piece_at = [this](double x) {
    const auto right = std::lower_bound(knots_.begin() + 1, knots_.end() - 1, x);
    return static_cast<std::size_t>(right - knots_.begin()) - 1;
  };
  for (std::size_t i = 0; i < xp.size(); ++i) {
    const std::size_t piece = piece_at(xp[i]);
    const double t = xp[i] - knots_[piece];
    if (runs_.empty() || runs_.back().first_coef != piece * piece_length) {
      runs_.push_back({.first_coef = piece * piece_length, .pairs = 0, .odd = false});
    }
    run& r = runs_.back();
    if (r.odd) {
      sample_pair& two = pairs_.back();
      two = {two_lanes{two.t[0], t}, two_lanes{two.y[0], yp[i]}};
      ++r.pairs;
    } else {
      pairs_.push_back({two_lanes{t, t}, two_lanes{yp[i], yp[i]}});
    }
    r.odd = !r.odd;
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
    // g: the Hermite cubic of this interval
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
  const sample_pair* s = pairs_.data();
  for (const run& r : runs_) {
    two_lanes f[piece_length];
    for (std::size_t k = 0; k < piece_length; ++k) f[k] = in_each_lane<two_lanes>(coefs_[r.first_coef + k]);
    const auto square_of_residual = [&f](const sample_pair& two) {
      const two_lanes residual = two.y - horner8(f, two.t);
      return residual * residual;
    };
    for (std::size_t i = 0; i < r.pairs; ++i, ++s) {
      const two_lanes squares = square_of_residual(*s);
      sum += squares[0];
      sum += squares[1];
    }
    if (r.odd) sum += square_of_residual(*s++)[0];
  }
  return sum;
}

ppoly pp_iba(std::span<const double> x, std::span<const double> y, std::optional<int> n, double minslope) {
  const std::size_t npts = n && *n >= 0 ? static_cast<std::size_t>(*n) + 1 : 6;
  if (npts < 2) return makeppoly({0.0, 1.0}, {makepoly({std::numeric_limits<double>::quiet_NaN()})});
  monotone_fit fit(x, y, npts, minslope);
  const std::vector<double> p0 = fit.starting_point();
  const auto fitted = [&fit](const auto& start) {
    const auto cost = [&fit](std::span<const double> p) { return fit.cost(p); };
    return fit.make_func(neldermead(cost, start, {.tol = 1e-14}).xmin);
  };
  std::array<double, 6> usual{};  // 5 pieces: a simplex of fixed size makes the same steps faster
  std::ranges::copy_n(p0.begin(), static_cast<std::ptrdiff_t>(std::min(npts, usual.size())), usual.begin());
  const ppoly f = npts == usual.size() ? fitted(usual) : fitted(std::span<const double>(p0));
  return pp_over_real(f, ppval(f, 1.0));
}

}  // namespace corvantile
