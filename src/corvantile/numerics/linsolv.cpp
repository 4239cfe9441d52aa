#include "corvantile/numerics/linsolv.hpp"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace corvantile {
namespace {

/// A strided vector, as the level-1 routines see it. Element i counts from the end that the stride starts at.
template <class T>
struct strided {
  T* first;
  std::ptrdiff_t inc;

  strided(std::size_t n, std::span<T> x, std::ptrdiff_t step)
      : first(x.data() + (step < 0 && n > 0 ? -static_cast<std::ptrdiff_t>(n - 1) * step : 0)), inc(step) {}
  T& operator[](std::size_t i) const { return first[static_cast<std::ptrdiff_t>(i) * inc]; }
};

// The kernels take anything with operator[]: a pointer for LINPACK's unit strides, `strided` otherwise.

template <class X, class Y>
double dot(std::size_t n, const X& x, const Y& y) {
  double sum = 0.0;
  for (std::size_t i = 0; i < n; ++i) sum += x[i] * y[i];
  return sum;
}

template <class X, class Y>
void axpy(std::size_t n, double alpha, const X& x, const Y& y) {
  if (alpha == 0.0) return;
  for (std::size_t i = 0; i < n; ++i) y[i] += alpha * x[i];
}

template <class X>
void scal(std::size_t n, double alpha, const X& x) {
  for (std::size_t i = 0; i < n; ++i) x[i] *= alpha;
}

template <class X>
double asum(std::size_t n, const X& x) {
  double sum = 0.0;
  for (std::size_t i = 0; i < n; ++i) sum += std::abs(x[i]);
  return sum;
}

template <class X>
std::size_t iamax(std::size_t n, const X& x) {
  std::size_t best = 0;
  for (std::size_t i = 1; i < n; ++i)
    if (std::abs(x[i]) > std::abs(x[best])) best = i;
  return best;
}

}  // namespace

double sdot(std::size_t n, std::span<const double> x, std::ptrdiff_t incx, std::span<const double> y,
            std::ptrdiff_t incy) {
  return dot(n, strided(n, x, incx), strided(n, y, incy));
}

void saxpy(std::size_t n, double alpha, std::span<const double> x, std::ptrdiff_t incx, std::span<double> y,
           std::ptrdiff_t incy) {
  axpy(n, alpha, strided(n, x, incx), strided(n, y, incy));
}

void sswap(std::size_t n, std::span<double> x, std::ptrdiff_t incx, std::span<double> y, std::ptrdiff_t incy) {
  const strided sx(n, x, incx), sy(n, y, incy);
  for (std::size_t i = 0; i < n; ++i) std::swap(sx[i], sy[i]);
}

void sscal(std::size_t n, double alpha, std::span<double> x, std::ptrdiff_t incx) {
  scal(n, alpha, strided(n, x, incx));
}

double sasum(std::size_t n, std::span<const double> x, std::ptrdiff_t incx) { return asum(n, strided(n, x, incx)); }

std::size_t isamax(std::size_t n, std::span<const double> x, std::ptrdiff_t incx) {
  return iamax(n, strided(n, x, incx));
}

int sgefa(std::span<double> a, std::size_t lda, std::size_t n, std::span<std::size_t> ipvt) {
  int info = 0;
  for (std::size_t k = 0; k < n; ++k) {
    double* const ak = a.data() + k * lda;
    const std::size_t l = k + iamax(n - k, ak + k);
    ipvt[k] = l;
    if (ak[l] == 0.0) {  // the column is zero already
      info = static_cast<int>(k) + 1;
      continue;
    }
    if (k + 1 == n) break;
    std::swap(ak[l], ak[k]);
    scal(n - k - 1, -1.0 / ak[k], ak + k + 1);  // the negated multipliers
    for (std::size_t j = k + 1; j < n; ++j) {
      double* const aj = a.data() + j * lda;
      std::swap(aj[l], aj[k]);
      axpy(n - k - 1, aj[k], ak + k + 1, aj + k + 1);
    }
  }
  return info;
}

void sgesl(std::span<const double> a, std::size_t lda, std::size_t n, std::span<const std::size_t> ipvt,
           std::span<double> b, int job) {
  const auto col = [&](std::size_t k) { return a.data() + k * lda; };
  double* const x = b.data();
  if (job == 0) {
    for (std::size_t k = 0; k + 1 < n; ++k) {  // L y = b
      std::swap(x[ipvt[k]], x[k]);
      axpy(n - k - 1, x[k], col(k) + k + 1, x + k + 1);
    }
    for (std::size_t k = n; k-- > 0;) {  // U x = y
      x[k] /= col(k)[k];
      axpy(k, -x[k], col(k), x);
    }
  } else {
    for (std::size_t k = 0; k < n; ++k) x[k] = (x[k] - dot(k, col(k), x)) / col(k)[k];  // transpose(U) y = b
    for (std::size_t k = n; k-- > 0;) {                                                 // transpose(L) x = y
      if (k + 1 == n) continue;
      x[k] += dot(n - k - 1, col(k) + k + 1, x + k + 1);
      std::swap(x[ipvt[k]], x[k]);
    }
  }
}

void sgedi(std::span<double> a, std::size_t lda, std::size_t n, std::span<const std::size_t> ipvt,
           std::array<double, 2>& det, std::span<double> work, int job) {
  const auto col = [&](std::size_t k) { return a.data() + k * lda; };
  if (job / 10 != 0) {
    det = {1.0, 0.0};
    for (std::size_t i = 0; i < n; ++i) {
      if (ipvt[i] != i) det[0] = -det[0];
      det[0] = col(i)[i] * det[0];
      // Zero, infinity and NaN cannot be scaled into [1, 10). As published, the loops never end for the last two.
      if (det[0] == 0.0 || !std::isfinite(det[0])) break;
      while (std::abs(det[0]) < 1.0) {
        det[0] *= 10.0;
        det[1] -= 1.0;
      }
      while (std::abs(det[0]) >= 10.0) {
        det[0] /= 10.0;
        det[1] += 1.0;
      }
    }
  }
  if (job % 10 == 0) return;

  for (std::size_t k = 0; k < n; ++k) {  // U^-1, in place of U
    double* const ak = col(k);
    ak[k] = 1.0 / ak[k];
    scal(k, -ak[k], ak);
    for (std::size_t j = k + 1; j < n; ++j) {
      const double t = std::exchange(col(j)[k], 0.0);
      axpy(k + 1, t, ak, col(j));
    }
  }
  for (std::size_t k = n; k-- > 0;) {  // U^-1 L^-1, column by column from the right
    if (k + 1 == n) continue;
    for (std::size_t i = k + 1; i < n; ++i) work[i] = std::exchange(col(k)[i], 0.0);
    for (std::size_t j = k + 1; j < n; ++j) axpy(n, work[j], col(j), col(k));
    if (ipvt[k] != k) std::swap_ranges(col(k), col(k) + n, col(ipvt[k]));
  }
}

double sgeco(std::span<double> a, std::size_t lda, std::size_t n, std::span<std::size_t> ipvt, std::span<double> zs) {
  const auto col = [&](std::size_t k) { return a.data() + k * lda; };
  double* const z = zs.data();
  double anorm = 0.0;
  for (std::size_t j = 0; j < n; ++j) anorm = std::max(anorm, asum(n, col(j)));
  sgefa(a, lda, n, ipvt);

  // Estimates 1 / cond from |z| / |y|, with A z = y and transpose(A) y = e. The components of e are chosen so that
  // those of w in transpose(U) w = e grow as fast as they can. Frequent scaling avoids overflow.
  double ek = 1.0;
  std::fill_n(z, n, 0.0);
  for (std::size_t k = 0; k < n; ++k) {
    const double akk = col(k)[k];
    if (z[k] != 0.0) ek = std::copysign(ek, -z[k]);
    if (std::abs(ek - z[k]) > std::abs(akk)) {
      const double s = std::abs(akk) / std::abs(ek - z[k]);
      scal(n, s, z);
      ek *= s;
    }
    double wk = ek - z[k];
    double wkm = -ek - z[k];
    double s = std::abs(wk);
    double sm = std::abs(wkm);
    wk = akk == 0.0 ? 1.0 : wk / akk;
    wkm = akk == 0.0 ? 1.0 : wkm / akk;
    for (std::size_t j = k + 1; j < n; ++j) {
      sm += std::abs(z[j] + wkm * col(j)[k]);
      z[j] += wk * col(j)[k];
      s += std::abs(z[j]);
    }
    if (s < sm) {
      const double t = wkm - wk;
      wk = wkm;
      for (std::size_t j = k + 1; j < n; ++j) z[j] += t * col(j)[k];
    }
    z[k] = wk;
  }
  scal(n, 1.0 / asum(n, z), z);

  double ynorm = 1.0;
  const auto scale_by = [&](double s) {
    scal(n, s, z);
    ynorm *= s;
  };
  for (std::size_t k = n; k-- > 0;) {  // transpose(L) y = w
    if (k + 1 < n) z[k] += dot(n - k - 1, col(k) + k + 1, z + k + 1);
    if (std::abs(z[k]) > 1.0) scal(n, 1.0 / std::abs(z[k]), z);
    std::swap(z[ipvt[k]], z[k]);
  }
  scal(n, 1.0 / asum(n, z), z);
  for (std::size_t k = 0; k < n; ++k) {  // L v = y
    std::swap(z[ipvt[k]], z[k]);
    axpy(n - k - 1, z[k], col(k) + k + 1, z + k + 1);
    if (std::abs(z[k]) > 1.0) scale_by(1.0 / std::abs(z[k]));
  }
  scale_by(1.0 / asum(n, z));
  for (std::size_t k = n; k-- > 0;) {  // U z = v
    const double akk = col(k)[k];
    if (std::abs(z[k]) > std::abs(akk)) scale_by(std::abs(akk) / std::abs(z[k]));
    z[k] = akk == 0.0 ? 1.0 : z[k] / akk;
    axpy(k, -z[k], col(k), z);
  }
  scale_by(1.0 / asum(n, z));
  return anorm == 0.0 ? 0.0 : ynorm / anorm;
}

matrix inv(const matrix& a) {
  matrix r = a;
  const std::size_t n = a.rows();
  std::vector<std::size_t> ipvt(n);
  std::vector<double> work(n);
  std::array<double, 2> no_det{};
  sgefa(r.data(), n, n, ipvt);  // a zero pivot shows in the result of sgedi
  sgedi(r.data(), n, n, ipvt, no_det, work, 1);
  return r;
}

mat3 inv(const mat3& a) {
  std::array<double, 9> lu{};
  for (std::size_t j = 0; j < 3; ++j) std::ranges::copy(a.col[j].v, lu.begin() + static_cast<std::ptrdiff_t>(3 * j));
  std::array<std::size_t, 3> ipvt{};
  std::array<double, 3> work{};
  std::array<double, 2> no_det{};
  sgefa(lu, 3, 3, ipvt);
  sgedi(lu, 3, 3, ipvt, no_det, work, 1);
  mat3 r;
  for (std::size_t j = 0; j < 3; ++j)
    for (std::size_t i = 0; i < 3; ++i) r(i, j) = lu[i + 3 * j];
  return r;
}

void solve(const matrix& a, std::span<double> b) {
  matrix lu = a;
  const std::size_t n = a.rows();
  std::vector<std::size_t> ipvt(n);
  sgefa(lu.data(), n, n, ipvt);
  sgesl(lu.data(), n, n, ipvt, b, 0);
}

}  // namespace corvantile
