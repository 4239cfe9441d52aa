#pragma once
// Piecewise polynomials laid out for evaluation inside a search: one cache line a piece.

#include <array>
#include <cstddef>
#include <limits>
#include <vector>

#include "numerics/ppoly.hpp"

namespace corvantile {

/// A polynomial of degree 7 by Horner's rule from the highest coefficient down, c[0] being the constant term.
inline double horner8(const double* c, double t) {
  double v = c[7];
  for (std::size_t k = 7; k-- > 0;) v = v * t + c[k];
  return v;
}

/// A copy of a `ppoly` whose pieces have degree 7 at most (those of a fitted curve have), evaluated without touching
/// the heap. Gives the bits of `ppval` for every finite argument. A higher degree is cut off: for fitted curves only.
class packed_curve {
 public:
  packed_curve() = default;
  explicit packed_curve(const ppoly& pp)
      : starts_(pp.knots.begin(), pp.knots.end() - 1), ends_(pp.knots.begin() + 1, pp.knots.end()) {
    ends_.back() = std::numeric_limits<double>::infinity();  // the last piece goes on
    for (const polynomial& p : pp.polys) {
      piece& c = pieces_.emplace_back();
      for (std::size_t k = 0; k < c.coef.size() && k < p.coef.size(); ++k) c.coef[k] = p.coef[k];
    }
  }

  /// The piece that `x` belongs to; an interior knot belongs to the piece on its left.
  std::size_t piece_at(double x) const {
    std::size_t j = 0;
    while (ends_[j] < x) ++j;
    return j;
  }
  /// The value at `x`, which belongs to piece `j`.
  double value(std::size_t j, double x) const { return horner8(pieces_[j].coef.data(), x - starts_[j]); }
  double operator()(double x) const { return value(piece_at(x), x); }

  /// Whether the pieces of both meet at the same knots, so that one search serves the two.
  friend bool same_knots(const packed_curve& a, const packed_curve& b) {
    return a.starts_ == b.starts_ && a.ends_ == b.ends_;
  }

 private:
  struct alignas(64) piece {
    std::array<double, 8> coef{};
  };
  std::vector<double> starts_;
  std::vector<double> ends_;
  std::vector<piece> pieces_;
};

}  // namespace corvantile
