#pragma once
// Array helpers: the sort of the Nelder-Mead minimiser, and the identity matrix.

#include <cstddef>
#include <span>
#include <utility>

#include "corvantile/numerics/matrix.hpp"

namespace corvantile {

/// Sorts `v` in place. `perm` (empty, or as long as `v`) receives the permutation, counted from 0: the element now at
/// i was at perm[i]. In ascending order, equal values keep their order; descending order is its exact reverse, so
/// equal values are reversed too. NaN never moves, and nothing moves past it, just as if neighbours that are out of
/// order were swapped.
inline void sort(std::span<double> v, bool descending = false, std::span<std::size_t> perm = {}) {
  for (std::size_t i = 0; i < perm.size(); ++i) perm[i] = i;
  const auto swap_at = [&](std::size_t i, std::size_t j) {
    std::swap(v[i], v[j]);
    if (!perm.empty()) std::swap(perm[i], perm[j]);
  };
  for (std::size_t i = 1; i < v.size(); ++i) {
    for (std::size_t j = i; j > 0 && v[j - 1] > v[j]; --j) swap_at(j - 1, j);
  }
  if (descending) {
    for (std::size_t i = 0; i < v.size() / 2; ++i) swap_at(i, v.size() - 1 - i);
  }
}

// ---- Held ready: no job calls these ----

/// The n x n identity matrix.
inline matrix eye(std::size_t n) {
  matrix m(n, n);
  for (std::size_t i = 0; i < n; ++i) m(i, i) = 1.0;
  return m;
}

}  // namespace corvantile
