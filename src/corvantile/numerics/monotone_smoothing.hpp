#pragma once
// Smooth curves that never fall, through noisy samples of a tone response on [0, 1].

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "corvantile/numerics/cubicspline.hpp"
#include "corvantile/numerics/ppoly.hpp"
#include "corvantile/numerics/two_lanes.hpp"

namespace corvantile {

/// One fit: the samples, the control knots t_i = i / (npts - 1), i = 0 .. npts - 1, and everything that can be
/// computed from them in advance. A parameter vector p holds the values at the knots of a not-a-knot cubic spline g,
/// and the curve is
///   f(x) = integral from 0 to x of (mslope + g(u)^2) du.
/// So f(0) = 0 and f' >= mslope for every p: no search can make the curve fall.
class monotone_fit {
 public:
  /// `xp` and `yp` have one length and must outlive the fit. `xp` usually lies in [0, 1]; beyond that the end pieces
  /// continue. `npts` is at least 2, and at least 4 for the spline's end condition to make sense.
  monotone_fit(std::span<const double> xp, std::span<const double> yp, std::size_t npts, double mslope);

  /// The parameters for which the slope at each knot is that of a fitted polynomial of degree 5, or `mslope` if that
  /// is more.
  std::vector<double> starting_point() const;

  /// The curve f for the parameters `p`, not normalised: pieces of degree 7 on the control knots.
  ppoly make_func(std::span<const double> p) const;

  /// Sum of the squared residuals of f at the samples. Gives the bits of evaluating `make_func` there without
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
    std::size_t pairs;       // complete pairs
    bool odd;                // one more sample follows them, in lane 0 of a pair
  };
  std::span<const double> xp_;
  std::span<const double> yp_;
  double mslope_;
  std::vector<double> knots_;
  spline_system spline_;
  std::vector<interval> intervals_;
  std::vector<run> runs_;
  std::vector<sample_pair> pairs_;  // run by run
  std::vector<double> slopes_;      // of the latest spline
  std::vector<double> coefs_;       // of the latest curve, piece by piece
};

/// The monotone smoothing curve through the samples (x, y) by unweighted least squares: `n` pieces (5 if absent or
/// negative), with slopes of at least `minslope` before the final division by f(1). So f(0) = 0 and f(1) = 1, the
/// latter to an ulp because the pieces are scaled by a reciprocal. If f(1) = 0 or n = 0, the result is not finite.
ppoly pp_iba(std::span<const double> x, std::span<const double> y, std::optional<int> n = {}, double minslope = 0.0);

}  // namespace corvantile
