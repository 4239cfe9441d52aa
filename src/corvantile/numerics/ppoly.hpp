#pragma once
// Piecewise polynomials of one real variable: evaluation inside and outside the knots, calculus, inversion by
// bisection, knot insertion, arithmetic.
//
// Nothing is checked and nothing is reported. Knots that do not ascend, or are not finite, give meaningless values,
// but no routine leaves its arrays or runs forever because of them.

#include <span>
#include <utility>
#include <vector>

#include "corvantile/numerics/matrix.hpp"
#include "corvantile/numerics/polynomials.hpp"

namespace corvantile {

/// f(x) = polys[j](x - knots[j]) between knots[j] and knots[j + 1]. The first and the last piece continue outside.
/// Should have two or more ascending knots, and one piece fewer than knots.
struct ppoly {
  std::vector<double> knots;
  std::vector<polynomial> polys;
  friend bool operator==(const ppoly&, const ppoly&) = default;
};

/// The function with these knots and pieces. At least one piece, and one fewer than knots.
inline ppoly makeppoly(std::vector<double> knots, std::vector<polynomial> polys) {
  return {std::move(knots), std::move(polys)};
}

/// The cubic Hermite interpolant of the values `y` and slopes `d` at the ascending abscissae `x`, which become the
/// knots. All three have one length, at least 2. Equal neighbours in `x` give a non-finite piece.
ppoly hermite2ppoly(std::span<const double> x, std::span<const double> y, std::span<const double> d);

/// f(x). An interior knot belongs to the piece on its left. NaN if there are no pieces. Allocates nothing.
double ppval(const ppoly& pp, double x);
/// The continuous antiderivative F with F(first knot) = c, on the same knots.
ppoly ppint(const ppoly& pp, double c = 0.0);
/// Solves f(x) = y for x by bisection of [a, b], until the bracket is no wider than `tol`. Returns the last midpoint.
/// f may rise or fall; f(b) <= f(a) counts as falling. If y is out of reach, the search runs to the nearer end. If
/// the bracket is no wider than `tol` to begin with, or its width is NaN, the result is (a + b) / 2. If `tol` is
/// finer than the spacing of doubles at the root, the result is as good as doubles allow.
double ppsolve_s(const ppoly& pp, double y, double a, double b, double tol);
/// The same function, extrapolation included, with `x` among its knots. Unchanged if `x` is within 10 epsilon
/// max|knot| of an existing knot.
ppoly insert_knot(const ppoly& pp, double x);
/// Sets `a_out` to `a` with the knots of both, and `b_out` to `b` with the knots of both. The outputs may be the
/// inputs.
void merge_knots(const ppoly& a, const ppoly& b, ppoly& a_out, ppoly& b_out);

// A real acts on each piece. Two functions are first brought to common knots. If their knots still differ (knots
// within the tolerance of `insert_knot` count as one), the result has the knots of `a`, and pieces are combined index
// by index; the last piece of `b` stands in for any that it lacks.
ppoly real_plus_pp(double r, const ppoly& pp);
ppoly pp_plus_real(const ppoly& pp, double r);
ppoly pp_plus_pp(const ppoly& a, const ppoly& b);
ppoly real_minus_pp(double r, const ppoly& pp);
ppoly pp_minus_real(const ppoly& pp, double r);
ppoly pp_minus_pp(const ppoly& a, const ppoly& b);
ppoly real_times_pp(double r, const ppoly& pp);
ppoly pp_times_real(const ppoly& pp, double r);
ppoly pp_times_pp(const ppoly& a, const ppoly& b);
/// Multiplies by 1 / r, which rounds differently from dividing each coefficient.
ppoly pp_over_real(const ppoly& pp, double r);
/// f(x)^n, multiplied one factor at a time; the constant 1 on the same knots for n <= 0.
ppoly pp_to_power(const ppoly& pp, int n);

inline ppoly operator+(double r, const ppoly& pp) { return real_plus_pp(r, pp); }
inline ppoly operator+(const ppoly& pp, double r) { return pp_plus_real(pp, r); }
inline ppoly operator+(const ppoly& a, const ppoly& b) { return pp_plus_pp(a, b); }
inline ppoly operator-(double r, const ppoly& pp) { return real_minus_pp(r, pp); }
inline ppoly operator-(const ppoly& pp, double r) { return pp_minus_real(pp, r); }
inline ppoly operator-(const ppoly& a, const ppoly& b) { return pp_minus_pp(a, b); }
inline ppoly operator*(double r, const ppoly& pp) { return real_times_pp(r, pp); }
inline ppoly operator*(const ppoly& pp, double r) { return pp_times_real(pp, r); }
inline ppoly operator*(const ppoly& a, const ppoly& b) { return pp_times_pp(a, b); }
inline ppoly operator/(const ppoly& pp, double r) { return pp_over_real(pp, r); }

// ---- Held ready: no job calls these ----

inline int pp_knot_count(const ppoly& pp) { return static_cast<int>(pp.knots.size()); }
inline int pp_poly_count(const ppoly& pp) { return static_cast<int>(pp.polys.size()); }
/// Copies the knots into `out`, which must have room for all of them.
void pp_knots(const ppoly& pp, std::span<double> out);
/// Copies the pieces into `out`, which must have room for all of them.
void pp_polys(const ppoly& pp, std::span<polynomial> out);
/// Piece `i`. An index beyond either end means the piece at that end (whereas `pp_setpoly` refuses it).
polynomial pp_getpoly(const ppoly& pp, int i);
/// Sets piece `i` to `p` and returns true. If the index is beyond either end, changes nothing and returns false.
bool pp_setpoly(ppoly& pp, const polynomial& p, int i);

/// The derivative, piece by piece.
ppoly ppder(const ppoly& pp);

/// The integral of f from `a` to `b`, either of which may lie outside the knots.
double ppdefint(const ppoly& pp, double a, double b);

/// `ppsolve_s` for many targets at once. All take as many steps as the first target needs.
std::vector<double> ppsolve_v(const ppoly& pp, std::span<const double> y, double a, double b, double tol);
/// The same for a matrix of targets. The result has its shape.
matrix ppsolve_m(const ppoly& pp, const matrix& y, double a, double b, double tol);

}  // namespace corvantile
