#pragma once
// Nelder-Mead simplex search: the one general-purpose minimiser of the program.
//
// After J. A. Nelder and R. Mead, "A simplex method for function minimization", The Computer Journal 7 (1965), with
// reflection 1, expansion 2, contractions 1/2 and shrink 1/2 towards the best vertex.
//
// A search is a template on its cost, so that the cost is inlined, and on its dimension, so that a simplex of fixed
// size lives on the stack. A dimension known only at run time gets its storage once per search. Nothing is allocated
// per iteration either way.

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <type_traits>
#include <vector>

#include "numerics/nm_utils.hpp"

namespace corvantile {

/// What a search takes besides its cost and its start.
struct nm_settings {
  double scale = 1.0;                  ///< initial step along each axis
  double tol = 1.4901161193847656e-8;  ///< relative tolerance of the convergence test: the square root of epsilon
  int maxit = 10000;                   ///< iteration limit
  /// The search ends, unconverged, once its best value is below this. The best value never rises, so a caller that
  /// only asks whether the minimum lies below a threshold gets the same answer sooner.
  double enough = -std::numeric_limits<double>::infinity();
  /// Leave out iterations that are proved to repeat earlier ones (see
  /// `cycle_watch`). The result does not depend on it.
  bool skip_cycles = true;
};

/// The outcome of a search. `Vector` is an array for a fixed dimension, else a vector.
template <class Vector>
struct nm_result {
  Vector xmin;             ///< best vertex
  double fmin = 0;         ///< cost at `xmin`
  int iters = 0;           ///< iterations made; maxit + 1 when the limit ran out
  bool converged = false;  ///< whether the convergence test was met
  std::int64_t evals = 0;  ///< cost evaluations made
};

/// Cost evaluations of all finished searches of this thread. A statistic for benchmarks and tests; nothing in the
/// program reads it.
inline thread_local std::int64_t nm_evaluations = 0;

/// n + 1 vertices of n coordinates, one a row, and the cost at each. After a sort the rows stand in descending order
/// of cost: row 0 is the worst, row n the best. `N` is n, or std::dynamic_extent.
template <std::size_t N>
class simplex {
 public:
  static constexpr bool fixed = N != std::dynamic_extent;
  static constexpr std::size_t value_count = fixed ? N + 1 : std::dynamic_extent;

  explicit simplex(std::size_t n) {
    if constexpr (!fixed) {
      n_ = n;
      data_.resize((n + 1) * (n + 1));
    }
  }
  std::size_t n() const {
    if constexpr (fixed) {
      return N;
    } else {
      return n_;
    }
  }
  std::span<double, N> row(std::size_t i) { return std::span<double, N>(data_.data() + i * n(), n()); }
  std::span<const double, N> row(std::size_t i) const {
    return std::span<const double, N>(data_.data() + i * n(), n());
  }
  std::span<double, value_count> values() {
    return std::span<double, value_count>(data_.data() + (n() + 1) * n(), n() + 1);
  }
  std::span<const double, value_count> values() const {
    return std::span<const double, value_count>(data_.data() + (n() + 1) * n(), n() + 1);
  }
  /// Equality of all bits: unlike ==, it holds for values that are not a number, and tells the zeros apart.
  friend bool same_bits(const simplex& a, const simplex& b) {
    return std::equal(a.data_.begin(), a.data_.end(), b.data_.begin(), b.data_.end(), [](double x, double y) {
      return std::bit_cast<std::uint64_t>(x) == std::bit_cast<std::uint64_t>(y);
    });
  }

 private:
  struct nothing {};
  [[no_unique_address]] std::conditional_t<fixed, nothing, std::size_t> n_{};
  std::conditional_t<fixed, std::array<double, (N + 1) * (N + 1)>, std::vector<double>> data_{};
};

/// Row 0 is `x0`, row i is `x0` moved by `scale` along axis i - 1.
template <std::size_t N>
void makesimplex(simplex<N>& s, std::span<const double, N> x0, double scale) {
  for (std::size_t i = 0; i <= s.n(); ++i) {
    for (std::size_t j = 0; j < s.n(); ++j) s.row(i)[j] = i == 0 ? x0[j] : x0[j] + scale * (i == j + 1 ? 1.0 : 0.0);
  }
}

/// Evaluates every vertex, in row order.
template <std::size_t N, class Cost>
void mapoverrows(simplex<N>& s, Cost& cost) {
  for (std::size_t i = 0; i <= s.n(); ++i) s.values()[i] = cost(std::as_const(s).row(i));
}

/// Sorts values and rows by descending value. Of two equally bad vertices the one that stood later comes first and so
/// counts as the worse.
template <std::size_t N>
void simplexsort(simplex<N>& s) {
  constexpr std::size_t most = simplex<N>::fixed ? N + 1 : 0;
  std::conditional_t<simplex<N>::fixed, std::array<std::size_t, most>, std::vector<std::size_t>> perm{};
  if constexpr (!simplex<N>::fixed) perm.resize(s.n() + 1);
  sort(s.values(), true, perm);
  const simplex<N> unsorted = s;
  for (std::size_t i = 0; i <= s.n(); ++i) std::ranges::copy(unsorted.row(perm[i]), s.row(i).begin());
}

/// The same as `simplexsort` where only row 0 is new. Usually all values differ and a single insertion will do; ties
/// (which every sort turns round) and values that are not a number take the general way.
template <std::size_t N>
void reinsert_worst(simplex<N>& s) {
  const auto v = s.values();
  const std::size_t n = s.n();
  bool plain = !std::isnan(v[0]);
  for (std::size_t i = 1; i < n; ++i) plain = plain && v[i] > v[i + 1];
  if (n == 1) plain = plain && !std::isnan(v[1]);
  if (!plain) return simplexsort(s);
  if (!(v[1] >= v[0])) return;

  const double moved = v[0];
  std::size_t to = 0;
  for (; to < n && v[to + 1] >= moved; ++to) {
    v[to] = v[to + 1];
    for (std::size_t j = 0; j < n; ++j) std::swap(s.row(to)[j], s.row(to + 1)[j]);
  }
  v[to] = moved;
}

/// out = a + t (b - a).
template <std::size_t N>
void ray(std::span<double, N> out, std::span<const double, N> a, std::span<const double, N> b, double t) {
  for (std::size_t j = 0; j < out.size(); ++j) out[j] = a[j] + t * (b[j] - a[j]);
}

/// Moves every vertex halfway towards the best one.
template <std::size_t N>
void simplexshrink(simplex<N>& s) {
  const auto best = s.row(s.n());
  for (std::size_t i = 0; i <= s.n(); ++i) {
    for (std::size_t j = 0; j < s.n(); ++j) s.row(i)[j] = (s.row(i)[j] + best[j]) * 0.5;
  }
}

/// The convergence test on sorted values: worst and best agree to the tolerance.
inline bool closeenough(std::span<const double> values, double tol) {
  const double worst = values.front();
  const double best = values.back();
  return worst - best <= (std::abs(worst) + std::abs(best) + 1.0) * tol * 0.5;
}

/// Notices when a search has begun to repeat itself. An iteration is a pure function of the simplex, and without a
/// shrink some value falls in every iteration, so a search that never ends returns to a state that it had after a
/// shrink. One state is kept, replaced after 1, 2, 4, 8, ... shrinks, so that a cycle of any length is found in time
/// proportional to its length and its beginning (R. P. Brent, BIT 20, 1980).
template <std::size_t N>
class cycle_watch {
 public:
  explicit cycle_watch(std::size_t n) : saved_(n) {}
  /// To be asked after iteration k, which has shrunk the simplex. The length of the cycle in iterations, or 0.
  int period(const simplex<N>& s, int k) {
    if (shrinks_ > 0 && same_bits(s, saved_)) return k - saved_at_;
    if (std::has_single_bit(++shrinks_)) {
      saved_ = s;
      saved_at_ = k;
    }
    return 0;
  }

 private:
  simplex<N> saved_;
  int saved_at_ = 0;
  unsigned shrinks_ = 0;
};

/// The search itself, for both kinds of dimension. Fills everything of `result` but `xmin`, and leaves the simplex
/// sorted.
template <std::size_t N, class Cost, class Vector>
void nm_search(simplex<N>& s, Cost& cost, const nm_settings& set, nm_result<Vector>& result) {
  const std::size_t n = s.n();
  const auto counted = [&](std::span<const double, N> x) {
    ++result.evals;
    return cost(x);
  };
  const auto v = s.values();
  std::conditional_t<simplex<N>::fixed, std::array<double, 3 * (simplex<N>::fixed ? N : 0)>, std::vector<double>>
      work{};
  if constexpr (!simplex<N>::fixed) work.resize(3 * n);
  const std::span<double, N> c(work.data(), n);
  const std::span<double, N> r(work.data() + n, n);
  const std::span<double, N> e(work.data() + 2 * n, n);
  cycle_watch<N> watch(n);
  const auto accept = [&](std::span<const double, N> x, double fx) {
    std::ranges::copy(x, s.row(0).begin());
    v[0] = fx;
  };

  mapoverrows(s, counted);
  simplexsort(s);
  result.converged = closeenough(v, set.tol);
  if (result.converged) return;

  int k = 1;
  for (; k <= set.maxit && !(v[n] < set.enough); ++k) {
    for (std::size_t j = 0; j < n; ++j) {
      double sum = s.row(1)[j];
      for (std::size_t i = 2; i <= n; ++i) sum += s.row(i)[j];
      c[j] = sum / static_cast<double>(n);
    }
    const std::span<const double, N> w = s.row(0);
    const double fw = v[0];
    const double fs = v[1];
    const double fb = v[n];

    bool shrunk = false;
    ray<N>(r, w, c, 2.0);
    const double fr = counted(r);
    if (fr < fs && fr < fb) {
      // The expansion is weighed against the old best, not against the reflection: a known looseness of this variant.
      ray<N>(e, w, c, 3.0);
      const double fe = counted(e);
      fe < fb ? accept(e, fe) : accept(r, fr);
    } else if (fs > fr && fr >= fb) {
      accept(r, fr);
    } else {  // also where the reflection is not a number
      ray<N>(e, w, c, fr < fw ? 1.5 : 0.5);
      const double fe = counted(e);
      if (fe < fw) {
        accept(e, fe);
      } else {
        simplexshrink(s);
        mapoverrows(s, counted);
        shrunk = true;
      }
    }
    shrunk ? simplexsort(s) : reinsert_worst(s);
    result.converged = closeenough(v, set.tol);
    if (result.converged) break;
    if (shrunk && set.skip_cycles) {
      if (const int period = watch.period(s, k); period > 0) k += (set.maxit - k) / period * period;
    }
  }
  result.iters = k;  // maxit + 1 after the last one: the counter is advanced before it is tested
}

/// Minimises `cost`, a callable of one point (a span of n doubles) that returns a double, from `x0`. Never fails:
/// what it reports instead is `converged`. Costs that are not a number or infinite are tolerated; every comparison
/// with the former is false, so they end in contractions and shrinks.
template <std::size_t N, class Cost>
nm_result<std::array<double, N>> neldermead(Cost&& cost, const std::array<double, N>& x0,
                                            const nm_settings& set = {}) {
  nm_result<std::array<double, N>> result;
  simplex<N> s(N);
  makesimplex<N>(s, x0, set.scale);
  nm_search(s, cost, set, result);
  std::ranges::copy(s.row(N), result.xmin.begin());
  result.fmin = s.values()[N];
  nm_evaluations += result.evals;
  return result;
}

/// The same for a dimension known only at run time, at least 1.
template <class Cost>
nm_result<std::vector<double>> neldermead(Cost&& cost, std::span<const double> x0, const nm_settings& set = {}) {
  nm_result<std::vector<double>> result;
  simplex<std::dynamic_extent> s(x0.size());
  makesimplex<std::dynamic_extent>(s, x0, set.scale);
  nm_search(s, cost, set, result);
  const auto best = s.row(x0.size());
  result.xmin.assign(best.begin(), best.end());
  result.fmin = s.values().back();
  nm_evaluations += result.evals;
  return result;
}

}  // namespace corvantile
