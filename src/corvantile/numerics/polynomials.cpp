#include "corvantile/numerics/polynomials.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include "corvantile/numerics/matrix.hpp"
#include "corvantile/numerics/svd.hpp"

namespace corvantile {

polynomial poly_arg_power(int n) { return poly_to_power(makepoly({0.0, 1.0}), n); }

polynomial poly_trim(const polynomial& p, std::optional<double> tol) {
  double limit = 0.0;
  if (tol) {
    limit = *tol;
  } else {
    for (const double c : p.coef) limit = std::max(limit, std::abs(c));
    limit *= std::numeric_limits<double>::epsilon();
  }
  std::size_t len = p.coef.size();
  while (len > 0 && std::abs(p.coef[len - 1]) <= limit) --len;
  if (len == 0) return makepoly({0.0});
  return makepoly({p.coef.begin(), p.coef.begin() + static_cast<std::ptrdiff_t>(len)});
}

polynomial real_times_poly(double r, const polynomial& p) {
  polynomial q = p;
  for (double& c : q.coef) c *= r;
  return q;
}

polynomial poly_times_real(const polynomial& p, double r) { return real_times_poly(r, p); }

polynomial poly_times_poly(const polynomial& a, const polynomial& b) {
  const std::size_t la = a.coef.size();
  const std::size_t lb = b.coef.size();
  polynomial p{std::vector<double>(la + lb - 1)};
  for (std::size_t k = 0; k < p.coef.size(); ++k) {
    const std::size_t first = k < lb ? 0 : k - lb + 1;
    const std::size_t last = std::min(k, la - 1);
    for (std::size_t i = first; i <= last; ++i) p.coef[k] += a.coef[i] * b.coef[k - i];
  }
  return p;
}

polynomial real_minus_poly(double r, const polynomial& p) {
  polynomial q = p;
  for (double& c : q.coef) c = -c;
  q.coef[0] = r - p.coef[0];
  return q;
}

polynomial poly_minus_real(const polynomial& p, double r) {
  polynomial q = p;
  q.coef[0] -= r;
  return q;
}

polynomial poly_minus_poly(const polynomial& a, const polynomial& b) {
  polynomial p{std::vector<double>(std::max(a.coef.size(), b.coef.size()))};
  for (std::size_t k = 0; k < a.coef.size(); ++k) p.coef[k] += a.coef[k];
  for (std::size_t k = 0; k < b.coef.size(); ++k) p.coef[k] -= b.coef[k];
  return p;
}

polynomial real_plus_poly(double r, const polynomial& p) {
  polynomial q = p;
  q.coef[0] += r;
  return q;
}

polynomial poly_plus_real(const polynomial& p, double r) { return real_plus_poly(r, p); }

polynomial poly_plus_poly(const polynomial& a, const polynomial& b) {
  polynomial p{std::vector<double>(std::max(a.coef.size(), b.coef.size()))};
  for (std::size_t k = 0; k < a.coef.size(); ++k) p.coef[k] += a.coef[k];
  for (std::size_t k = 0; k < b.coef.size(); ++k) p.coef[k] += b.coef[k];
  return p;
}

polynomial polyint(const polynomial& p, double c) {
  polynomial q{std::vector<double>(p.coef.size() + 1)};
  q.coef[0] = c;
  for (std::size_t k = 1; k < q.coef.size(); ++k) q.coef[k] = p.coef[k - 1] / static_cast<double>(k);
  return q;
}

double polydefint(const polynomial& p, double a, double b) {
  const polynomial q = polyint(p);
  return polyval(q, b) - polyval(q, a);
}

polynomial polyder(const polynomial& p) {
  if (p.coef.size() <= 1) return makepoly({0.0});
  polynomial q{std::vector<double>(p.coef.size() - 1)};
  for (std::size_t k = 1; k < p.coef.size(); ++k) q.coef[k - 1] = static_cast<double>(k) * p.coef[k];
  return q;
}

polynomial poly_to_power(const polynomial& p, int n) {
  polynomial power = poly_identity();
  for (int i = 0; i < n; ++i) power = power * p;
  return power;
}

polynomial poly_arg_scale(const polynomial& p, double s) {
  polynomial q = p;
  // Coefficient k is multiplied by s exactly k times. Repeated products round differently from pow().
  for (std::size_t i = 1; i < q.coef.size(); ++i)
    for (std::size_t k = i; k < q.coef.size(); ++k) q.coef[k] *= s;
  return q;
}

polynomial poly_arg_shift(const polynomial& p, double s) { return poly_compose(p, makepoly({-s, 1.0})); }

polynomial poly_compose(const polynomial& p, const polynomial& q) {
  polynomial sum = makepoly({p.coef[0]});
  for (int k = 1; k <= poly_degree(p); ++k) sum = sum + p.coef[static_cast<std::size_t>(k)] * poly_to_power(q, k);
  return sum;
}

polynomial polyfit(std::span<const double> x, std::span<const double> y, int n) {
  const std::size_t m = x.size();
  matrix powers(m, static_cast<std::size_t>(n) + 1);
  std::ranges::fill(powers.col(0), 1.0);
  for (std::size_t j = 1; j < powers.cols(); ++j)
    for (std::size_t i = 0; i < m; ++i) powers(i, j) = x[i] * powers(i, j - 1);
  const matrix b = pinv(powers);
  polynomial p{std::vector<double>(powers.cols())};
  for (std::size_t i = 0; i < m; ++i)
    for (std::size_t k = 0; k < p.coef.size(); ++k) p.coef[k] += b(k, i) * y[i];
  return p;
}

}  // namespace corvantile
