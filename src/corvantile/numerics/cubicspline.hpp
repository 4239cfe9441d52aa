#pragma once
// Knot slopes of interpolating cubic splines. `hermite2ppoly` makes the spline itself of them.

#include <cstddef>
#include <span>
#include <vector>

namespace corvantile {

/// What decides the first and the last slope. Any other number counts as `endcond_not_a_knot`.
inline constexpr int endcond_clamped = 1;     ///< the slopes are given
inline constexpr int endcond_natural = 2;     ///< second derivative 0
inline constexpr int endcond_periodic = 3;    ///< equal slopes and equal second derivatives; wants y[0] = y[n - 1]
inline constexpr int endcond_not_a_knot = 4;  ///< third derivative continuous across the second and the last but one

/// The linear system for the slopes at `x`, factored once and solved for as many `y` as there are.
///
/// With h_i = x[i+1] - x[i] and D_i = y[i+1] - y[i], row i of an interior knot states that the second derivatives of
/// the neighbouring pieces agree, scaled by h_{i-1} h_i / 2:
///   h_i d_{i-1} + 2 (h_{i-1} + h_i) d_i + h_{i-1} d_{i+1} = 3 (D_{i-1} h_i / h_{i-1} + D_i h_{i-1} / h_i).
/// After de Boor, A Practical Guide to Splines (1978), chapter IV. The system is eliminated as a
/// dense one, by LINPACK's steps, but the solution passes over the zeros that nearly all of the
/// factors consist of: same bits for finite `y`.
///
/// The knots ascend. Not-a-knot needs four of them, for with three both end rows state the same, so that the system
/// is singular: the slopes are then arbitrary or not finite. They are NaN where no system exists, that is for one
/// knot, or for two with not-a-knot.
class spline_system {
 public:
  explicit spline_system(std::span<const double> x, int endcond = endcond_not_a_knot);

  /// Writes the slopes that go with the values `y` to `d`, each as long as `x` and apart in memory. `d1` and `dn` are
  /// the end slopes of a clamped spline. Allocates nothing.
  void slopes(std::span<const double> y, std::span<double> d, double d1 = 0.0, double dn = 0.0) const;

 private:
  void solve(std::span<double> b) const;

  std::size_t n_;
  int endcond_;
  std::vector<double> h_;          // interval widths
  std::vector<double> lu_;         // n x n, column-major
  std::vector<std::size_t> ipvt_;  // of its pivots
  struct extent {
    std::size_t first, last;  // rows of a column's first and last entry that is not zero, diagonal included
  };
  std::vector<extent> extents_;  // of the columns of lu_
};

// ---- Held ready: no job calls these ----

/// The slopes `d` that make the cubic Hermite interpolant of `x`, `y` and `d` twice continuously differentiable.
/// Arguments and limits as for `spline_system`.
void spline(std::span<const double> x, std::span<const double> y, std::span<double> d,
            int endcond = endcond_not_a_knot, double d1 = 0.0, double dn = 0.0);

}  // namespace corvantile
