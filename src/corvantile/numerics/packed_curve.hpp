#pragma once
// Piecewise polynomials, laid out for evaluation inside a search.

#include <algorithm>
#include <cstddef>
#include <limits>
#include <vector>

#include "corvantile/numerics/ppoly.hpp"
#include "corvantile/numerics/two_lanes.hpp"

namespace corvantile {

/// A polynomial of degree 7 by Horner's rule, from the highest coefficient down. c[0] is the constant term.
template <class T>
T horner8(const T* c, T t) {
  T v = c[7];
  for (std::size_t k = 7; k-- > 0;) v = v * t + c[k];
  return v;
}

/// Whether a curve can be packed: it has pieces, its knots ascend, and no degree is above 7. The curves of a fitted
/// monitor qualify.
inline bool is_packable(const ppoly& pp) {
  const auto ends_before = [](double a, double b) { return !(a < b); };
  return !pp.polys.empty() && pp.knots.size() == pp.polys.size() + 1 &&
         std::ranges::adjacent_find(pp.knots, ends_before) == pp.knots.end() &&
         std::ranges::all_of(pp.polys, [](const polynomial& p) { return p.coef.size() <= 8; });
}

/// Pieces of degree 7. T is double for one curve and two_lanes for two. A search asks for arguments in the same piece
/// again and again, so the latest piece is remembered: each thread needs its own curves.
template <class T>
class packed_pieces {
 public:
  /// The value at `x`. An interior knot belongs to the piece on its left; the first and the last piece continue
  /// outside.
  T operator()(double x) const {
    const piece* p = latest_;
    if (!(p->begin < x && x <= p->end)) [[unlikely]] {
      p = pieces_.data();
      while (p->end < x) ++p;
      latest_ = p;
    }
    return horner8(p->coef, in_each_lane<T>(x) - p->start);
  }

  packed_pieces(const packed_pieces&) = delete;  // `latest_` points into its own pieces
  packed_pieces& operator=(const packed_pieces&) = delete;
  packed_pieces(packed_pieces&&) noexcept = default;  // the pieces stay where they are
  packed_pieces& operator=(packed_pieces&&) noexcept = default;

 protected:
  packed_pieces() = default;
  static constexpr double last = std::numeric_limits<double>::infinity();  // end of the last piece
  struct piece {
    double begin;  // in x; -infinity for the first piece
    double end;    // infinite for the last piece
    T start;
    T coef[8];
  };
  piece& add_piece(double end) {
    const double begin = pieces_.empty() ? -last : pieces_.back().end;
    piece& added = pieces_.emplace_back(piece{.begin = begin, .end = end, .start = {}, .coef = {}});
    latest_ = pieces_.data();
    return added;
  }
  static double end_of_piece(const ppoly& pp, std::size_t j) {
    return j + 1 < pp.polys.size() ? pp.knots[j + 1] : last;
  }
  static double coefficient(const ppoly& pp, std::size_t j, std::size_t k) {
    return k < pp.polys[j].coef.size() ? pp.polys[j].coef[k] : 0.0;
  }

 private:
  std::vector<piece> pieces_;
  mutable const piece* latest_ = nullptr;
};

/// A copy of a packable curve that evaluates without touching the heap. Gives the bits of `ppval` for every finite
/// argument.
class packed_curve : public packed_pieces<double> {
 public:
  packed_curve() = default;
  explicit packed_curve(const ppoly& pp) {
    for (std::size_t j = 0; j < pp.polys.size(); ++j) {
      piece& p = add_piece(end_of_piece(pp, j));
      p.start = pp.knots[j];
      for (std::size_t k = 0; k < 8; ++k) p.coef[k] = coefficient(pp, j, k);
    }
  }
};

/// Two such curves, evaluated at the same arguments, one per lane. Their knots may differ: a piece ends wherever
/// either curve has a knot, but each lane counts from the left knot of its own curve's piece.
class packed_pair : public packed_pieces<two_lanes> {
 public:
  packed_pair() = default;
  packed_pair(const ppoly& a, const ppoly& b) {
    std::size_t i = 0;
    std::size_t j = 0;
    double end = 0;
    do {
      const double end_of_a = end_of_piece(a, i);
      const double end_of_b = end_of_piece(b, j);
      end = std::min(end_of_a, end_of_b);
      piece& p = add_piece(end);
      p.start = two_lanes{a.knots[i], b.knots[j]};
      for (std::size_t k = 0; k < 8; ++k) p.coef[k] = two_lanes{coefficient(a, i, k), coefficient(b, j, k)};
      if (end_of_a == end) ++i;
      if (end_of_b == end) ++j;
    } while (end != last);
  }
};

}  // namespace corvantile
