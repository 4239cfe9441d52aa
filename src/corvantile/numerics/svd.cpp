#include "corvantile/numerics/svd.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>
#include <vector>

namespace corvantile {
namespace {

matrix transpose(const matrix& a) {
  matrix t(a.cols(), a.rows());
  for (std::size_t j = 0; j < a.cols(); ++j)
    for (std::size_t i = 0; i < a.rows(); ++i) t(j, i) = a(i, j);
  return t;
}

/// Whether `v` vanishes beside `scale` in working precision. Needs sums that are rounded to double (SSE2, AArch64).
bool negligible(double v, double scale) { return scale + std::abs(v) == scale; }

/// Turns columns p and q of `m` by the angle with cosine c and sine s.
void rotate(matrix& m, std::size_t p, std::size_t q, double c, double s) {
  for (std::size_t j = 0; j < m.rows(); ++j) {
    const double x = m(j, p);
    const double z = m(j, q);
    m(j, p) = x * c + z * s;
    m(j, q) = -x * s + z * c;
  }
}

/// Householder reduction of `u` to bidiagonal form: diagonal `w`, superdiagonal `rv1` (element 0 is unused and zero).
/// The reflections stay in `u`. Returns the largest |w_i| + |rv1_i|; elements negligible beside it count as zero.
double bidiagonalise(matrix& u, std::span<double> w, std::span<double> rv1) {
  const std::size_t m = u.rows();
  const std::size_t n = u.cols();
  double g = 0.0, scale = 0.0, size = 0.0;
  for (std::size_t i = 0; i < n; ++i) {
    const std::size_t l = i + 1;
    rv1[i] = scale * g;
    g = scale = 0.0;
    if (i < m) {
      for (std::size_t k = i; k < m; ++k) scale += std::abs(u(k, i));
      if (scale != 0.0) {
        double s = 0.0;
        for (std::size_t k = i; k < m; ++k) {
          u(k, i) /= scale;
          s += u(k, i) * u(k, i);
        }
        double f = u(i, i);
        g = -std::copysign(std::sqrt(s), f);
        const double h = f * g - s;
        u(i, i) = f - g;
        for (std::size_t j = l; j < n; ++j) {
          s = 0.0;
          for (std::size_t k = i; k < m; ++k) s += u(k, i) * u(k, j);
          f = s / h;
          for (std::size_t k = i; k < m; ++k) u(k, j) += f * u(k, i);
        }
        for (std::size_t k = i; k < m; ++k) u(k, i) *= scale;
      }
    }
    w[i] = scale * g;
    g = scale = 0.0;
    if (i < m && l < n) {
      for (std::size_t k = l; k < n; ++k) scale += std::abs(u(i, k));
      if (scale != 0.0) {
        double s = 0.0;
        for (std::size_t k = l; k < n; ++k) {
          u(i, k) /= scale;
          s += u(i, k) * u(i, k);
        }
        const double f = u(i, l);
        g = -std::copysign(std::sqrt(s), f);
        const double h = f * g - s;
        u(i, l) = f - g;
        for (std::size_t k = l; k < n; ++k) rv1[k] = u(i, k) / h;
        for (std::size_t j = l; j < m; ++j) {
          s = 0.0;
          for (std::size_t k = l; k < n; ++k) s += u(j, k) * u(i, k);
          for (std::size_t k = l; k < n; ++k) u(j, k) += s * rv1[k];
        }
        for (std::size_t k = l; k < n; ++k) u(i, k) *= scale;
      }
    }
    size = std::max(size, std::abs(w[i]) + std::abs(rv1[i]));  // skips NaN
  }
  return size;
}

/// Accumulates into `v` the right-hand reflections left in `u`.
void accumulate_right(const matrix& u, std::span<const double> rv1, matrix& v) {
  const std::size_t n = u.cols();
  for (std::size_t i = n; i-- > 0;) {
    const std::size_t l = i + 1;
    if (l < n) {
      const double g = rv1[l];
      if (g != 0.0) {
        for (std::size_t j = l; j < n; ++j) v(j, i) = (u(i, j) / u(i, l)) / g;  // two divisions: no underflow
        for (std::size_t j = l; j < n; ++j) {
          double s = 0.0;
          for (std::size_t k = l; k < n; ++k) s += u(i, k) * v(k, j);
          for (std::size_t k = l; k < n; ++k) v(k, j) += s * v(k, i);
        }
      }
      for (std::size_t j = l; j < n; ++j) v(i, j) = v(j, i) = 0.0;
    }
    v(i, i) = 1.0;
  }
}

/// Accumulates the left-hand reflections left in `u`, in their place.
void accumulate_left(matrix& u, std::span<const double> w) {
  const std::size_t m = u.rows();
  const std::size_t n = u.cols();
  const std::size_t mn = std::min(m, n);
  for (std::size_t i = mn; i-- > 0;) {
    const std::size_t l = i + 1;
    const double g = w[i];
    for (std::size_t j = l; j < n; ++j) u(i, j) = 0.0;
    if (g == 0.0) {
      for (std::size_t j = i; j < m; ++j) u(j, i) = 0.0;
    } else {
      if (l < mn) {
        for (std::size_t j = l; j < n; ++j) {
          double s = 0.0;
          for (std::size_t k = l; k < m; ++k) s += u(k, i) * u(k, j);
          const double f = (s / u(i, i)) / g;  // two divisions: no underflow
          for (std::size_t k = i; k < m; ++k) u(k, j) += f * u(k, i);
        }
      }
      for (std::size_t j = i; j < m; ++j) u(j, i) /= g;
    }
    u(i, i) += 1.0;
  }
}

}  // namespace

double pythag(double a, double b) {
  // With NaN or two infinities, r below would be NaN and the published loop would never end.
  if (!std::isfinite(a) || !std::isfinite(b)) return std::abs(a) + std::abs(b);
  double p = std::max(std::abs(a), std::abs(b));
  if (p == 0.0) return p;
  const double q = std::min(std::abs(a), std::abs(b)) / p;
  double r = q * q;
  for (double t = 4.0 + r; t != 4.0; t = 4.0 + r) {
    const double s = r / t;
    const double u = 1.0 + 2.0 * s;
    p = u * p;
    r = (s / u) * (s / u) * r;
  }
  return p;
}

int oldsvd(matrix& u, std::span<double> w, matrix& v, bool matu, bool matv) {
  const std::size_t n = u.cols();
  std::vector<double> rv1(n);
  const double size = bidiagonalise(u, w, rv1);
  if (matv) accumulate_right(u, rv1, v);
  if (matu) accumulate_left(u, w);

  for (std::size_t k = n; k-- > 0;) {  // QR on the bidiagonal form, one singular value after the other
    for (int its = 0;; ++its) {
      // The block from l to k has no negligible superdiagonal element. rv1[0] is zero, so the search ends at 0 at the
      // latest.
      std::size_t l = k;
      while (l > 0 && !negligible(rv1[l], size) && !negligible(w[l - 1], size)) --l;

      if (l > 0 && !negligible(rv1[l], size)) {  // w[l - 1] is negligible: rotate rv1[l] away
        double c = 0.0, s = 1.0;
        for (std::size_t i = l; i <= k; ++i) {
          const double f = s * rv1[i];
          rv1[i] = c * rv1[i];
          if (negligible(f, size)) break;
          const double g = w[i];
          const double h = pythag(f, g);
          w[i] = h;
          c = g / h;
          s = -f / h;
          if (matu) rotate(u, l - 1, i, c, s);
        }
      }

      double z = w[k];
      if (l == k) {  // converged
        if (z < 0.0) {
          w[k] = -z;
          if (matv)
            for (double& e : v.col(k)) e = -e;
        }
        break;
      }
      if (its == 30) return static_cast<int>(k) + 1;

      // The shift comes from the bottom 2 x 2 minor.
      double x = w[l];
      double y = w[k - 1];
      double g = rv1[k - 1];
      double h = rv1[k];
      double f = 0.5 * (((g + z) / h) * ((g - z) / y) + y / h - h / y);
      g = pythag(f, 1.0);
      f = x - (z / x) * z + (h / x) * (y / (f + std::copysign(g, f)) - h);

      double c = 1.0, s = 1.0;
      for (std::size_t i = l + 1; i <= k; ++i) {
        g = rv1[i];
        y = w[i];
        h = s * g;
        g = c * g;
        z = pythag(f, h);
        rv1[i - 1] = z;
        c = f / z;
        s = h / z;
        f = x * c + g * s;
        g = -x * s + g * c;
        h = y * s;
        y = y * c;
        if (matv) rotate(v, i - 1, i, c, s);
        z = pythag(f, h);
        w[i - 1] = z;
        if (z != 0.0) {  // any rotation will do if z is zero
          c = f / z;
          s = h / z;
        }
        f = c * g + s * y;
        x = -s * g + c * y;
        if (matu) rotate(u, i - 1, i, c, s);
      }
      rv1[l] = 0.0;
      rv1[k] = f;
      w[k] = x;
    }
  }
  return 0;
}

svd_result svd(const matrix& a) {
  if (a.rows() < a.cols()) {
    svd_result t = svd(transpose(a));
    std::swap(t.u, t.v);
    return t;
  }
  const std::size_t n = a.cols();
  svd_result r{a, matrix(n, n), matrix(n, n)};
  std::vector<double> w(n);
  oldsvd(r.u, w, r.v, true, true);  // a value that has not converged stays as it is
  for (std::size_t k = 0; k < n; ++k) r.s(k, k) = w[k];
  return r;
}

matrix pinv(const matrix& a, std::optional<double> tol) {
  double limit = 0.0;
  if (tol) {
    limit = *tol;
  } else {
    for (const double e : a.data()) limit = std::max(limit, std::abs(e));
    limit *= std::numeric_limits<double>::epsilon();
  }
  auto [u, s, v] = svd(a);
  for (std::size_t k = 0; k < s.cols(); ++k) {
    const double reciprocal = s(k, k) >= limit ? 1.0 / s(k, k) : 0.0;
    for (double& e : v.col(k)) e *= reciprocal;
  }
  matrix r(a.cols(), a.rows());
  for (std::size_t j = 0; j < r.cols(); ++j)
    for (std::size_t k = 0; k < s.cols(); ++k)
      for (std::size_t i = 0; i < r.rows(); ++i) r(i, j) += v(i, k) * u(j, k);
  return r;
}

}  // namespace corvantile
