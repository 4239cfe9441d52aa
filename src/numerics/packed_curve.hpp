#pragma once
// Piecewise polynomials laid out for evaluation inside a search: one cache line a piece.

#include <array>
#include <cstddef>
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
  explicit packed_curve(const ppoly& pp) {
    knots_.assign(pp.knots.begin(), pp.knots.end() - 1);
    for (const polynomial& p : pp.polys) {
      piece& c = pieces_.emplace_back();
      for (std::size_t k = 0; k < c.coef.size() && k < p.coef.size(); ++k) c.coef[k] = p.coef[k];
    }
  }
  double operator()(double x) const {
    std::size_t j = 0;  // an interior knot belongs to the piece on its left
    while (j + 1 < knots_.size() && knots_[j + 1] < x) ++j;
    return horner8(pieces_[j].coef.data(), x - knots_[j]);
  }

 private:
  struct alignas(64) piece {
    std::array<double, 8> coef{};
  };
  std::vector<double> knots_;  // the left knot of each piece
  std::vector<piece> pieces_;
};

}  // namespace corvantile
