#pragma once
// Nelder-Mead simplex search: the program's only general-purpose minimiser.
//
// After J. A. Nelder and R. Mead, "A simplex method for function minimization", The Computer Journal 7 (1965), with
// reflection 1, expansion 2, contractions 1/2 and shrink 1/2 towards the best vertex.
//
// A search is a template on its cost, which is inlined, and on its dimension, so that a simplex of fixed size lives
// on the stack. If the dimension is known only at run time, storage is allocated once per search. Iterations never
// allocate.

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <span>
#include <type_traits>
#include <vector>

#include "corvantile/numerics/nm_utils.hpp"

namespace corvantile {

/// The options of a search.
struct nm_settings {
  double scale = 1.0;                  ///< initial step along each axis
  double tol = 1.4901161193847656e-8;  ///< relative tolerance of the convergence test: the square root of epsilon
  int maxit = 10000;                   ///< iteration limit
  /// The search ends, unconverged, once its best value is below this. The best value never rises, so a caller that
  /// only asks whether the minimum lies below a threshold gets the same answer sooner.
  double enough = -std::numeric_limits<double>::infinity();
  /// Skip iterations that provably repeat earlier ones (see `cycle_watch`). Does not change the result.
  bool skip_cycles = true;
};

/// The outcome of a search. `Vector` is an array for a fixed dimension, else a vector.
template <class Vector>
struct nm_result {
  Vector xmin;      ///< best vertex
  double fmin = 0;  ///< cost at `xmin`
  /// Iterations made, plus one if the search ended unconverged: maxit + 1 at the limit.
  std::int64_t iters = 0;
  bool converged = false;  ///< whether the convergence test was met
  std::int64_t evals = 0;  ///< cost evaluations made
};

/// n + 1 vertices of n coordinates, one per row, and the cost at each. Once sorted, the rows are in descending order
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
  /// Whether all bits are equal. Unlike ==, this holds for NaN and distinguishes the two zeros.
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

/// A vertex of its own, outside any simplex.
template <std::size_t N>
auto make_vertex(std::size_t n) {
  if constexpr (simplex<N>::fixed) {
    return std::array<double, N>{};
  } else {
    return std::vector<double>(n);
  }
}

/// If the size is fixed, copies through registers, so that a load soon afterwards finds the vertex in one store.
template <std::size_t N>
void copy_vertex(std::span<double, N> to, std::span<const double, N> from) {
  if constexpr (simplex<N>::fixed) {
    std::array<double, N> x;
    std::memcpy(x.data(), from.data(), sizeof x);
    std::memcpy(to.data(), x.data(), sizeof x);
  } else {
    std::ranges::copy(from, to.begin());
  }
}

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

/// Sorts values and rows by descending value. Of two equally bad vertices the later one comes first and so counts as
/// worse.
template <std::size_t N>
void simplexsort(simplex<N>& s) {
  constexpr std::size_t most = simplex<N>::fixed ? N + 1 : 0;
  std::conditional_t<simplex<N>::fixed, std::array<std::size_t, most>, std::vector<std::size_t>> perm{};
  if constexpr (!simplex<N>::fixed) perm.resize(s.n() + 1);
  sort(s.values(), true, perm);
  const simplex<N> unsorted = s;
  for (std::size_t i = 0; i <= s.n(); ++i) std::ranges::copy(unsorted.row(perm[i]), s.row(i).begin());
}

/// Replaces the worst vertex by `x` with cost `fx` and sorts as `simplexsort` would. Usually all values differ, and
/// the rows from the second worst down to the place of `x` move up as one block. Ties (which every sort reverses) and
/// NaN take the general way.
template <std::size_t N>
void replace_worst(simplex<N>& s, std::span<const double, N> x, double fx) {
  const auto v = s.values();
  const std::size_t n = s.n();
  bool plain = !std::isnan(fx);
  for (std::size_t i = 1; i < n; ++i) plain = plain && v[i] > v[i + 1];
  if (n == 1) plain = plain && !std::isnan(v[1]);
  if (!plain) [[unlikely]] {
    v[0] = fx;
    copy_vertex<N>(s.row(0), x);
    return simplexsort(s);
  }

  std::size_t to = 0;
  for (; to < n && v[to + 1] >= fx; ++to) {
    v[to] = v[to + 1];
    if constexpr (simplex<N>::fixed) copy_vertex<N>(s.row(to), s.row(to + 1));
  }
  if constexpr (!simplex<N>::fixed) std::copy(s.row(1).data(), s.row(1).data() + to * n, s.row(0).data());
  v[to] = fx;
  copy_vertex<N>(s.row(to), x);
}

/// The mean of all vertices but the worst: for each coordinate, the sum from row 1 on divided by n.
template <std::size_t N>
void centroid_of_all_but_worst(std::span<double, N> c, const simplex<N>& s) {
  for (std::size_t j = 0; j < s.n(); ++j) c[j] = s.row(1)[j];
  for (std::size_t i = 2; i <= s.n(); ++i) {  // row by row, in memory order
    for (std::size_t j = 0; j < s.n(); ++j) c[j] += s.row(i)[j];
  }
  for (double& sum : c) sum /= static_cast<double>(s.n());
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

/// The convergence test, on sorted values: worst and best agree to the tolerance.
inline bool closeenough(std::span<const double> values, double tol) {
  const double worst = values.front();
  const double best = values.back();
  return worst - best <= (std::abs(worst) + std::abs(best) + 1.0) * tol * 0.5;
}

/// Notices that a search has begun to repeat itself. An iteration is a pure function of the simplex, and some value
/// falls in every iteration without a shrink, so a search that never ends returns to a state that it had after a
/// shrink. One state is kept and replaced after 1, 2, 4, 8, ... shrinks, so a cycle of any length is found in time
/// proportional to its length and its start (R. P. Brent, BIT 20, 1980).
template <std::size_t N>
class cycle_watch {
 public:
  explicit cycle_watch(std::size_t n) : saved_(n) {}
  /// Call after iteration k if it shrank the simplex. Returns the length of the cycle in iterations, or 0.
  std::int64_t period(const simplex<N>& s, std::int64_t k) {
    if (shrinks_ > 0 && same_bits(s, saved_)) return k - saved_at_;
    if (std::has_single_bit(++shrinks_)) {
      saved_ = s;
      saved_at_ = k;
    }
    return 0;
  }

 private:
  simplex<N> saved_;
  std::int64_t saved_at_ = 0;
  unsigned shrinks_ = 0;
};

/// The search itself, for both kinds of dimension. Fills all of `result` except `xmin`, and leaves the simplex
/// sorted.
template <std::size_t N, class Cost, class Vector>
void nm_search(simplex<N>& s, Cost& cost, const nm_settings& set, nm_result<Vector>& result) {
  const std::size_t n = s.n();
  const auto counted = [&](std::span<const double, N> x) {
    ++result.evals;
    return cost(x);
  };
  const auto v = s.values();
  auto c = make_vertex<N>(n);
  auto r = make_vertex<N>(n);
  auto e = make_vertex<N>(n);
  cycle_watch<N> watch(n);
  mapoverrows(s, counted);
  simplexsort(s);
  result.converged = closeenough(v, set.tol);
  if (result.converged) return;

  std::int64_t k = 1;
  for (; k <= set.maxit && !(v[n] < set.enough); ++k) {
    centroid_of_all_but_worst<N>(c, s);
    const std::span<const double, N> w = s.row(0);
    const double fw = v[0];
    const double fs = v[1];
    const double fb = v[n];
    const auto try_at = [&](std::span<double, N> x, double t) {
      ray<N>(x, w, c, t);
      return counted(x);
    };
    // The same, if only a value below `limit` will be used.
    const auto try_below = [&](double limit, std::span<double, N> x, double t) {
      if constexpr (requires { cost(x, limit); }) {
        ray<N>(x, w, c, t);
        ++result.evals;
        return cost(x, limit);
      } else {
        return try_at(x, t);
      }
    };

    bool shrunk = false;
    const double fr = try_below(fw, r, 2.0);
    if (fr < fs && fr < fb) {
      // The expansion is compared with the old best, not with the reflection: a known looseness of this variant.
      const double fe = try_below(fb, e, 3.0);
      if (fe < fb) {
        replace_worst<N>(s, e, fe);
      } else {
        replace_worst<N>(s, r, fr);
      }
    } else if (fs > fr && fr >= fb) {
      replace_worst<N>(s, r, fr);
    } else {  // also if the reflection is NaN
      // Two branches instead of a choice of t: the processor starts on the likelier one before it knows `fr`.
      double fe = 0;
      if (fr < fw) [[unlikely]] {
        fe = try_at(e, 1.5);
      } else {
        fe = try_at(e, 0.5);
      }
      if (fe < fw) {
        replace_worst<N>(s, e, fe);
      } else {
        simplexshrink(s);
        mapoverrows(s, counted);
        simplexsort(s);
        shrunk = true;
      }
    }
    result.converged = closeenough(v, set.tol);
    if (result.converged) break;
    if (shrunk && set.skip_cycles) {
      if (const auto period = watch.period(s, k); period > 0) k += (set.maxit - k) / period * period;
    }
  }
  result.iters = k;  // maxit + 1 after the last one: the counter is advanced before it is tested
}

/// Minimises `cost`, a callable of one point (a span of n doubles) that returns a double, starting from `x0`. Never
/// fails; `converged` says how it went. Costs may be infinite or NaN: every comparison with NaN is false, so it leads
/// to contractions and shrinks.
///
/// `cost` may also accept a point and a limit. It then returns its value if that is below the limit, otherwise any
/// number not below the limit, which it may know sooner. This does not change the result.
template <std::size_t N, class Cost>
nm_result<std::array<double, N>> neldermead(Cost&& cost, const std::array<double, N>& x0,
                                            const nm_settings& set = {}) {
  nm_result<std::array<double, N>> result;
  simplex<N> s(N);
  makesimplex<N>(s, x0, set.scale);
  nm_search(s, cost, set, result);
  std::ranges::copy(s.row(N), result.xmin.begin());
  result.fmin = s.values()[N];
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
  return result;
}

}  // namespace corvantile
