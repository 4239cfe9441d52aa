#pragma once
// One-dimensional lookup tables with straight lines between their points.

#include <algorithm>
#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace corvantile {

/// A table: ordinates `y` over strictly rising abscissae `x`, both of one length. Empty vectors mean "never built".
struct lut {
  std::vector<double> x;
  std::vector<double> y;
  friend bool operator==(const lut&, const lut&) = default;
};

/// The table through the points (x, y), repaired if necessary: reversed unless the last abscissa exceeds the first;
/// then, if the abscissae do not rise strictly, they are replaced by their own monotone smoothing over position. The
/// ordinates stay. The result may still be invalid; check with `isvalid_lut`.
lut makelut_nostat(std::span<const double> x, std::span<const double> y);

/// The table's value at `xq`: linear between the points; the end segments continue without limit. NaN if the table
/// has fewer than 2 points.
double interp(const lut& t, double xq);

/// `interp` of one table, prepared for many queries. It finds the same segment and uses the same formula, so the bits
/// are the same, but it does not scan if the abscissae rise: it looks up evenly spaced ones by index and others by
/// bisection. For evenly spaced ones it tries the latest segment first, because searches mostly stay there; it
/// remembers that segment, so each thread needs its own interpolator. The table must outlive it.
class interpolator {
 public:
  explicit interpolator(const lut& t);

  double operator()(double xq) const {
    if (how_ != search::by_index) return searched(xq);
    std::size_t i = latest_;
    if (!(x_[i - 1] < xq && xq <= x_[i])) {
      if (!(xq <= x_[n_ - 1])) return through(n_ - 1, n_ - 2, xq);
      // Find the first i >= 1 with x[i] >= xq; the guess is off by at most one.
      i = 1;
      if (xq > x_[1]) {
        i = std::min(static_cast<std::size_t>((xq - x_[0]) * per_step_) + 1, n_ - 1);
        if (x_[i - 1] >= xq) {
          --i;
        } else if (x_[i] < xq) {
          ++i;
        }
      }
      latest_ = i;
    }
    return through(i, i, xq);
  }

 private:
  enum class search { none, by_index, by_bisection, by_scan };
  double searched(double xq) const;

  // The straight line through points i - 1 and i, anchored at one of them. Segments are anchored at their upper
  // point, but beyond the table's end the last one is anchored at its lower point.
  double through(std::size_t i, std::size_t anchor, double xq) const {
    return (xq - x_[anchor]) * (y_[i] - y_[i - 1]) / (x_[i] - x_[i - 1]) + y_[anchor];
  }

  const double* x_;
  const double* y_;
  std::size_t n_;
  double per_step_ = 0;  // segments per unit of x
  search how_ = search::none;
  mutable std::size_t latest_ = 1;
};

/// The table with its axes swapped. Neither sorted nor checked: meant for tables whose ordinates rise strictly.
lut invlut(const lut& t);

/// Whether both vectors are non-empty and of one length, and the abscissae rise strictly. One point is enough.
bool isvalid_lut(const lut& t);

/// Monotone smoothing of the samples (x, y) with `nseg` pieces and slopes of at least `minslope` before normalisation
/// (see `pp_iba`). Evaluated at `n` evenly spaced points from the first to the last abscissa, or at the abscissae
/// themselves if `n` is absent.
std::vector<double> iba(std::span<const double> x, std::span<const double> y, int nseg = 5, double minslope = 0.0,
                        std::optional<int> n = {});

/// `n` evenly spaced values from `a` to `b`. Both ends are exact, and each interior value is computed directly. n = 1
/// gives `b`.
std::vector<double> linspace(double a, double b, std::size_t n);
/// Whether each value exceeds (falls below) the one before it. True for fewer than two values.
bool increasing(std::span<const double> v);
bool decreasing(std::span<const double> v);

// ---- Held ready: no job calls these ----

/// A table, or the reason why there is none.
struct lut_and_stat {
  lut table;     ///< empty unless `stat` is 0
  int stat = 0;  ///< 0 built, 1 lengths differ, 2 `x` neither rises nor falls strictly, 3 no memory, 4 below 2 points
};

/// The table through the points (x, y). Falling abscissae are stored in reverse.
lut_and_stat makelut_stat(std::span<const double> x, std::span<const double> y);

/// Turns `t` into a table that was never built.
void reset_lut(lut& t);

/// `linspace` with a default length.
std::vector<double> oldlinspace(double a, double b, std::size_t n = 100);

}  // namespace corvantile
