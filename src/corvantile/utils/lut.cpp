#include "corvantile/utils/lut.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>

#include "corvantile/numerics/monotone_smoothing.hpp"

namespace corvantile {

static lut copy(std::span<const double> x, std::span<const double> y) {
  return {{x.begin(), x.end()}, {y.begin(), y.end()}};
}
static lut reversed_copy(std::span<const double> x, std::span<const double> y) {
  return {{x.rbegin(), x.rend()}, {y.rbegin(), y.rend()}};
}

lut_and_stat makelut_stat(std::span<const double> x, std::span<const double> y) try {
  if (x.size() != y.size()) return {{}, 1};
  if (x.size() < 2) return {{}, 4};
  if (increasing(x)) return {copy(x, y), 0};
  if (decreasing(x)) return {reversed_copy(x, y), 0};
  return {{}, 2};
} catch (const std::bad_alloc&) {
  return {{}, 3};
}

lut makelut_nostat(std::span<const double> x, std::span<const double> y) {
  if (x.empty()) return {};
  lut t = x.back() > x.front() ? copy(x, y) : reversed_copy(x, y);
  if (t.x.size() < 2 || increasing(t.x)) return t;
  t.x = iba(linspace(0.0, 1.0, t.x.size()), t.x);
  return t;
}

// The readable form: scans from the low end.
double interp(const lut& t, double xq) {
  const std::size_t n = t.x.size();
  if (n < 2) return std::numeric_limits<double>::quiet_NaN();
  const std::vector<double>& x = t.x;
  const std::vector<double>& y = t.y;
  if (!(x[0] >= xq) && xq > x[n - 1])
    return (xq - x[n - 2]) * (y[n - 1] - y[n - 2]) / (x[n - 1] - x[n - 2]) + y[n - 2];
  std::size_t i = 1;  // also if xq does not pass the first point
  if (!(x[0] >= xq)) {
    while (i < n - 1 && !(x[i] >= xq)) ++i;
  }
  return (xq - x[i]) * (y[i] - y[i - 1]) / (x[i] - x[i - 1]) + y[i];
}

interpolator::interpolator(const lut& t) : x_(t.x.data()), y_(t.y.data()), n_(t.x.size()) {
  if (n_ < 2) return;
  how_ = search::by_scan;
  if (!increasing(t.x)) return;
  how_ = search::by_bisection;
  const double step = (x_[n_ - 1] - x_[0]) / static_cast<double>(n_ - 1);
  for (std::size_t i = 0; i < n_; ++i) {
    // If every point is within a quarter of a step of its place, the segment found by index is the right one or its
    // neighbour.
    if (!(std::abs(x_[0] + static_cast<double>(i) * step - x_[i]) < 0.25 * step)) return;
  }
  per_step_ = 1.0 / step;
  if (std::isfinite(per_step_)) how_ = search::by_index;
}

double interpolator::searched(double xq) const {
  if (how_ == search::none) return std::numeric_limits<double>::quiet_NaN();
  if (x_[0] >= xq) return through(1, 1, xq);
  if (xq > x_[n_ - 1]) return through(n_ - 1, n_ - 2, xq);
  std::size_t i = 1;
  if (how_ == search::by_bisection) {
    i = static_cast<std::size_t>(std::lower_bound(x_ + 1, x_ + n_ - 1, xq) - x_);
  } else {
    while (i < n_ - 1 && !(x_[i] >= xq)) ++i;
  }
  return through(i, i, xq);
}

lut invlut(const lut& t) { return {t.y, t.x}; }

bool isvalid_lut(const lut& t) { return !t.x.empty() && t.x.size() == t.y.size() && increasing(t.x); }

void reset_lut(lut& t) { t = {}; }

std::vector<double> iba(std::span<const double> x, std::span<const double> y, int nseg, double minslope,
                        std::optional<int> n) {
  const ppoly p = pp_iba(x, y, nseg, minslope);
  std::vector<double> at =
      n ? linspace(x.front(), x.back(), static_cast<std::size_t>(*n)) : std::vector<double>(x.begin(), x.end());
  for (double& v : at) v = ppval(p, v);
  return at;
}

std::vector<double> linspace(double a, double b, std::size_t n) {
  std::vector<double> r(n);
  if (n == 0) return r;
  r[0] = a;
  r[n - 1] = b;
  for (std::size_t i = 1; i + 1 < n; ++i) r[i] = a + static_cast<double>(i) * (b - a) / static_cast<double>(n - 1);
  return r;
}
std::vector<double> oldlinspace(double a, double b, std::size_t n) { return linspace(a, b, n); }

bool increasing(std::span<const double> v) {
  for (std::size_t i = 1; i < v.size(); ++i) {
    if (!(v[i] > v[i - 1])) return false;
  }
  return true;
}

bool decreasing(std::span<const double> v) {
  for (std::size_t i = 1; i < v.size(); ++i) {
    if (!(v[i - 1] > v[i])) return false;
  }
  return true;
}

}  // namespace corvantile
