#pragma once
// Inversion of a monotone function by bisection.

#include <cmath>
#include <utility>

namespace corvantile {

/// The ends of a bracket (f is lower at `lo`) and the last midpoint.
struct bisection {
  double lo, hi, mid;

  /// f may rise or fall; f(b) <= f(a) counts as falling.
  template <class F>
  bisection(const F& f, double a, double b) : lo(a), hi(b), mid((a + b) / 2) {
    if (f(b) <= f(a)) std::swap(lo, hi);
  }
  bool wider_than(double tol) const { return std::abs(hi - lo) > tol; }  // false for NaN
  /// Halves the bracket. Returns false if that changed nothing: its ends are neighbouring numbers, or infinite.
  template <class Below>
  bool step(const Below& below) {
    mid = (lo + hi) * 0.5;
    double& end = below(mid) ? lo : hi;
    const bool moved = end != mid;
    end = mid;
    return moved;
  }
};

/// Solves f(x) = y for x in [a, b] by bisection, until the bracket is no wider than `tol`. Returns the last midpoint.
/// If y is out of reach, the search runs to the nearer end. If the bracket is no wider than `tol` to begin with, or
/// its width is NaN, the result is (a + b) / 2.
template <class F>
double solve_by_bisection(const F& f, double y, double a, double b, double tol) {
  bisection s(f, a, b);
  const auto below = [&](double mid) { return f(mid) - y < 0; };
  while (s.wider_than(tol) && s.step(below)) {
  }
  return s.mid;
}

}  // namespace corvantile
