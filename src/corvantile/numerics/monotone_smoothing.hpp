#pragma once
// Smooth, never falling curves through noisy samples of a tone response on [0, 1].

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "corvantile/numerics/cubicspline.hpp"
#include "corvantile/numerics/ppoly.hpp"
#include "corvantile/numerics/two_lanes.hpp"

namespace corvantile {

/// One fit: the samples, the control knots t_i = i / (npts - 1), i = 0 .. npts - 1, and what can be worked out from
/// them once. A parameter vector p gives the values at the knots of a not-a-knot cubic spline g, and the curve is
///   f(x) = integral from 0 to x of (mslope + g(u)^2) du,
/// so that f(0) = 0 and f' >= mslope whatever p is: no search can make it fall.
class monotone_fit {
 public:
  /// `xp` (in [0, 1] as a rule; the end pieces continue beyond) and `yp` have one length and must outlive the fit.
  /// `npts` is at least 2, and at least 4 for the spline's end condition to make sense.
  monotone_fit(std::span<const double> xp, std::span<const double> yp, std::size_t npts, double mslope);

  /// The parameters whose slope at the knots is that of a fitted polynomial of
  /// degree 5, or `mslope` where that is more.
  std::vector<double> starting_point() const;

  /// The curve f for the parameters `p`, not normalised: pieces of degree 7 on the control knots.
  ppoly make_func(std::span<const double> p) const;

  /// Sum of the squared residuals of f at the samples. The same bits as evaluating `make_func` there, but without
  /// building it: the spline's system is factored once, each sample knows its piece, and nothing is allocated.
  double cost(std::span<const double> p);

 private:
  static constexpr std::size_t piece_length = 8;  // coefficients of a piece: one cache line

  struct interval {
    double width, three_width, square, cube;  // h, 3 h, h^2, h^3
  };
  struct sample_pair {
    two_lanes t;  // arguments local to the piece
    two_lanes y;
  };
  struct run {               // of consecutive samples in one piece
    std::size_t first_coef;  // of the piece in `coefs_`
    std::size_t pairs;       // whole ones
    bool odd;                // whether one more sample follows them, in lane 0 of a pair
  };
  std::span<const double> xp_;
  std::span<const double> yp_;
  double mslope_;
  std::vector<double> knots_;
  spline_system spline_;
  std::vector<interval> intervals_;
  std::vector<run> runs_;
  std::vector<sample_pair> pairs_;  // of all runs
  std::vector<double> slopes_;      // of the latest spline
  std::vector<double> coefs_;       // of the latest curve, a piece after the other
};

/// The monotone smoothing curve through the samples (x, y): `n` pieces (5 when absent or negative), slopes of at
/// least `minslope` before the final division by f(1), so that f(0) = 0 and f(1) = 1 (the latter to an ulp: the
/// pieces are scaled by a reciprocal). Least squares without weights. Where f(1) = 0, or without pieces (n = 0), the
/// result is not finite.
ppoly pp_iba(std::span<const double> x, std::span<const double> y, std::optional<int> n = {}, double minslope = 0.0);

}  // namespace corvantile
