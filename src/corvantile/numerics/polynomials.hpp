#pragma once
// Real polynomials of one variable: algebra, calculus, changes of the argument.
//
// REQUIRES: at least one coefficient in every argument, except in `poly_degree`; nothing checks that. Arguments are
// never modified; results are new values. Degrees are small here, so plain quadratic schemes will do.

#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace corvantile {

/// p(x) = sum of coef[k] x^k, the constant term first. Never trimmed behind the caller's back: if the leading terms
/// of a sum cancel, a zero leading coefficient stays. The zero polynomial has the single coefficient 0; no
/// coefficients means "never set".
struct polynomial {
  std::vector<double> coef;
  friend bool operator==(const polynomial&, const polynomial&) = default;
};

/// The polynomial with the coefficients `c`, at least one.
inline polynomial makepoly(std::vector<double> c) { return {std::move(c)}; }
/// The constant 1, to start repeated products from.
inline polynomial poly_identity() { return {{1.0}}; }
// Sums and differences have the length of the longer operand, products len(a) + len(b) - 1.
polynomial real_times_poly(double r, const polynomial& p);
polynomial poly_times_real(const polynomial& p, double r);
polynomial poly_times_poly(const polynomial& a, const polynomial& b);
polynomial real_minus_poly(double r, const polynomial& p);
polynomial poly_minus_real(const polynomial& p, double r);
polynomial poly_minus_poly(const polynomial& a, const polynomial& b);
polynomial real_plus_poly(double r, const polynomial& p);
polynomial poly_plus_real(const polynomial& p, double r);
polynomial poly_plus_poly(const polynomial& a, const polynomial& b);

inline polynomial operator*(double r, const polynomial& p) { return real_times_poly(r, p); }
inline polynomial operator*(const polynomial& p, double r) { return poly_times_real(p, r); }
inline polynomial operator*(const polynomial& a, const polynomial& b) { return poly_times_poly(a, b); }
inline polynomial operator-(double r, const polynomial& p) { return real_minus_poly(r, p); }
inline polynomial operator-(const polynomial& p, double r) { return poly_minus_real(p, r); }
inline polynomial operator-(const polynomial& a, const polynomial& b) { return poly_minus_poly(a, b); }
inline polynomial operator+(double r, const polynomial& p) { return real_plus_poly(r, p); }
inline polynomial operator+(const polynomial& p, double r) { return poly_plus_real(p, r); }
inline polynomial operator+(const polynomial& a, const polynomial& b) { return poly_plus_poly(a, b); }

/// p(x) by Horner's rule. A constant ignores `x`, even NaN.
inline double polyval(const polynomial& p, double x) {
  std::size_t k = p.coef.size() - 1;
  double v = p.coef[k];
  while (k-- > 0) v = v * x + p.coef[k];
  return v;
}

/// The antiderivative with the constant term `c`; one degree more.
polynomial polyint(const polynomial& p, double c = 0.0);
/// The derivative; one degree less, but zero (degree 0) for a constant.
polynomial polyder(const polynomial& p);

/// q(x) = p(x - s).
polynomial poly_arg_shift(const polynomial& p, double s);
/// The least-squares polynomial of degree `n` >= 0 through the points (x[i], y[i]), by the pseudo-inverse. `x` and
/// `y` have one length. With fewer than n + 1 distinct points it is the solution of least norm. Always has n + 1
/// coefficients.
polynomial polyfit(std::span<const double> x, std::span<const double> y, int n);

// ---- Held ready: no job calls these ----

/// The monomial x^n; the constant 1 for n <= 0.
polynomial poly_arg_power(int n);

/// Number of coefficients minus one; -1 if never set.
inline int poly_degree(const polynomial& p) { return static_cast<int>(p.coef.size()) - 1; }

/// `p` without its leading coefficients of magnitude <= tol; the zero polynomial if none remains.
/// The default `tol` is 2^-52 times the largest magnitude of a coefficient.
polynomial poly_trim(const polynomial& p, std::optional<double> tol = {});

/// The integral of `p` from `a` to `b`, as the difference of the antiderivative's values.
double polydefint(const polynomial& p, double a, double b);

/// p(x)^n, multiplied one factor at a time; the constant 1 for n <= 0.
polynomial poly_to_power(const polynomial& p, int n);

/// q(x) = p(s x).
polynomial poly_arg_scale(const polynomial& p, double s);

/// p(q(x)), with degree(p) degree(q) + 1 coefficients.
polynomial poly_compose(const polynomial& p, const polynomial& q);

}  // namespace corvantile
