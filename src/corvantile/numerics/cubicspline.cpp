#include "corvantile/numerics/cubicspline.hpp"

#include "corvantile/numerics/linsolv.hpp"

namespace corvantile {
namespace {

constexpr double cube(double h) { return h * h * h; }

}  // namespace

spline_system::spline_system(std::span<const double> x, int endcond)
    : n_(x.size()), endcond_(endcond), h_(n_ > 0 ? n_ - 1 : 0), lu_(n_ * n_), ipvt_(n_) {
  const std::size_t n = n_;
  for (std::size_t i = 0; i < h_.size(); ++i) h_[i] = x[i + 1] - x[i];
  const auto a = [this, n](std::size_t i, std::size_t j) -> double& { return lu_[i + j * n]; };

  for (std::size_t i = 1; i + 1 < n; ++i) {
    a(i, i - 1) = h_[i];
    a(i, i) = 2 * (h_[i - 1] + h_[i]);
    a(i, i + 1) = h_[i - 1];
  }
  // With fewer than two knots (three for not-a-knot) the end rows stay zero, and dividing by their pivots gives NaN.
  if (n >= 2) {
    const double first = h_.front();
    const double last = h_.back();
    switch (endcond) {
      case endcond_clamped:
        a(0, 0) = 1;
        a(n - 1, n - 1) = 1;
        break;
      case endcond_natural:  // scaled by h^2 / 2
        a(0, 0) = 2;
        a(0, 1) = 1;
        a(n - 1, n - 2) = 1;
        a(n - 1, n - 1) = 2;
        break;
      case endcond_periodic:  // the last row is an interior knot's; with two knots its entries coincide
        a(0, 0) = 1;
        a(0, n - 1) = -1;
        a(n - 1, n - 2) += first;
        a(n - 1, n - 1) += 2 * first;
        a(n - 1, 0) += 2 * last;
        a(n - 1, 1) += last;
        break;
      default:
        if (n >= 3) {
          const auto row = [&](std::size_t i, std::size_t j) {  // across knot j + 1
            const double p = h_[j];
            const double q = h_[j + 1];
            a(i, j) = cube(q) * p;
            a(i, j + 1) = cube(q) * p - q * cube(p);
            a(i, j + 2) = -(q * cube(p));
          };
          row(0, 0);
          row(n - 1, n - 3);
        }
    }
  }
  sgefa(lu_, n, n, ipvt_);
  extents_.reserve(n);
  for (std::size_t k = 0; k < n; ++k) {
    extent e{k, k};
    for (std::size_t i = k; i-- > 0;) e.first = a(i, k) != 0 ? i : e.first;
    for (std::size_t i = k + 1; i < n; ++i) e.last = a(i, k) != 0 ? i : e.last;
    extents_.push_back(e);
  }
}

// `sgesl` with job 0, but without adding zero times something.
void spline_system::solve(std::span<double> b) const {
  for (std::size_t k = 0; k + 1 < n_; ++k) {
    const double* column = &lu_[k * n_];
    const double t = b[ipvt_[k]];
    b[ipvt_[k]] = b[k];
    b[k] = t;
    for (std::size_t i = k + 1; i <= extents_[k].last; ++i) b[i] += t * column[i];
  }
  for (std::size_t k = n_; k-- > 0;) {
    const double* column = &lu_[k * n_];
    b[k] /= column[k];
    const double t = -b[k];
    for (std::size_t i = extents_[k].first; i < k; ++i) b[i] += t * column[i];
  }
}

void spline_system::slopes(std::span<const double> y, std::span<double> d, double d1, double dn) const {
  const std::size_t n = n_;
  if (n == 0) return;
  const auto D = [y](std::size_t i) { return y[i + 1] - y[i]; };
  const auto across = [&](std::size_t i, std::size_t j) { return 3 * (D(i) * h_[j] / h_[i] + D(j) * h_[i] / h_[j]); };

  for (std::size_t i = 1; i + 1 < n; ++i) d[i] = across(i - 1, i);
  d[0] = d[n - 1] = 0;
  if (n >= 2) {
    switch (endcond_) {
      case endcond_clamped:
        d[0] = d1;
        d[n - 1] = dn;
        break;
      case endcond_natural:
        d[0] = 3 * D(0) / h_[0];
        d[n - 1] = 3 * D(n - 2) / h_[n - 2];
        break;
      case endcond_periodic:
        d[n - 1] = across(n - 2, 0);
        break;
      default:
        if (n >= 3) {
          const auto rhs = [&](std::size_t j) { return 2 * cube(h_[j + 1]) * D(j) - 2 * cube(h_[j]) * D(j + 1); };
          d[0] = rhs(0);
          d[n - 1] = rhs(n - 3);
        }
    }
  }
  solve(d);
}

void spline(std::span<const double> x, std::span<const double> y, std::span<double> d, int endcond, double d1,
            double dn) {
  spline_system(x, endcond).slopes(y, d, d1, dn);
}

}  // namespace corvantile
