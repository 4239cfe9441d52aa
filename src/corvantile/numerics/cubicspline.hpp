#pragma once
// Knot slopes of interpolating cubic splines. `hermite2ppoly` turns them into the spline itself.

#include <cstddef>
#include <span>
#include <vector>

namespace corvantile {

/// The condition that fixes the first and the last slope. Any other number means `endcond_not_a_knot`.
inline constexpr int endcond_clamped = 1;     ///< the slopes are given
inline constexpr int endcond_natural = 2;     ///< second derivative 0
inline constexpr int endcond_periodic = 3;    ///< equal slopes and equal second derivatives; needs y[0] = y[n - 1]
inline constexpr int endcond_not_a_knot = 4;  ///< continuous third derivative at the second and last-but-one knot

/// The linear system for the slopes at `x`: factored once, then solved for any number of `y`.
///
/// With h_i = x[i+1] - x[i] and D_i = y[i+1] - y[i], row i of an interior knot says that the second derivatives of
/// the two neighbouring pieces agree, scaled by h_{i-1} h_i / 2:
///   h_i d_{i-1} + 2 (h_{i-1} + h_i) d_i + h_{i-1} d_{i+1} = 3 (D_{i-1} h_i / h_{i-1} + D_i h_{i-1} / h_i).
/// After de Boor, A Practical Guide to Splines (1978), chapter IV. The matrix is factored as a dense one, by
/// LINPACK's steps. The factors are mostly zeros, and the solution skips those: for finite `y` the bits are the same.
///
/// REQUIRES: ascending knots. Not-a-knot needs at least four: with three, both end rows say the same, the system is
/// singular and the slopes are arbitrary or not finite. With one knot, or with two and not-a-knot, there is no system
/// and the slopes are NaN.
class spline_system {
 public:
  explicit spline_system(std::span<const double> x, int endcond = endcond_not_a_knot);

  /// Writes the slopes for the values `y` to `d`. Both are as long as `x` and must not overlap. `d1` and `dn` are the
  /// end slopes of a clamped spline. Allocates nothing.
  void slopes(std::span<const double> y, std::span<double> d, double d1 = 0.0, double dn = 0.0) const;

 private:
  void solve(std::span<double> b) const;

  std::size_t n_;
  int endcond_;
  std::vector<double> h_;          // interval widths
  std::vector<double> lu_;         // n x n, column-major
  std::vector<std::size_t> ipvt_;  // pivot rows
  struct extent {
    std::size_t first, last;  // rows of a column's first and last non-zero entry, diagonal included
  };
  std::vector<extent> extents_;  // one per column of lu_
};

// ---- Held ready: no job calls these ----

/// The slopes `d` that make the cubic Hermite interpolant of `x`, `y` and `d` twice continuously differentiable.
/// Arguments and limits are those of `spline_system`.
void spline(std::span<const double> x, std::span<const double> y, std::span<double> d,
            int endcond = endcond_not_a_knot, double d1 = 0.0, double dn = 0.0);

}  // namespace corvantile
