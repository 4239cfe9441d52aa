#pragma once
// Least squares of three functions of three drives, each from 0 to 1.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "corvantile/numerics/matrix.hpp"
#include "corvantile/residual/spline_grid.hpp"

namespace corvantile {

/// Where a search ended.
struct least_squares {
  vec3 drive;
  double cost = 0;  ///< sum of the squares there
  int steps = 0;    ///< evaluations after the first
};

struct least_squares_options {
  int steps = 30;          ///< evaluations after the first, at most
  double enough = 0;       ///< a cost not above it ends the search
  double step_end = 1e-7;  ///< so does a step that is not longer
};

/// x with A x = b for the rows and columns named in `free` (the others are 0), by Cholesky. False, and `x` is not to
/// be used, unless A is positive definite there. A is symmetric.
inline bool solve_free(const mat3& A, const vec3& b, const std::array<bool, 3>& free, vec3& x) {
  mat3 L;
  x = {};
  for (std::size_t i = 0; i < 3; ++i) {
    if (!free[i]) continue;
    double y = b[i], pivot = A(i, i);
    for (std::size_t j = 0; j < i; ++j) {
      if (!free[j]) continue;
      double l = A(i, j);
      for (std::size_t k = 0; k < j; ++k) l -= L(i, k) * L(j, k);
      L(i, j) = l / L(j, j);
      pivot -= L(i, j) * L(i, j);
      y -= L(i, j) * x[j];
    }
    if (!(pivot > 0)) return false;
    L(i, i) = std::sqrt(pivot);
    x[i] = y / L(i, i);
  }
  for (std::size_t i = 3; i-- > 0;) {
    if (!free[i]) continue;
    for (std::size_t j = i + 1; j < 3; ++j) x[i] -= L(j, i) * x[j];
    x[i] /= L(i, i);
  }
  return true;
}

/// The step from `drive` that the damped quadratic model asks for, ended at the bounds: whoever would leave them
/// stops there, and the others are solved for anew. False if the model has no minimum.
inline bool bounded_step(const mat3& H, const vec3& gradient, double damping, const vec3& drive, vec3& next) {
  mat3 A = H;
  const double largest = std::max({H(0, 0), H(1, 1), H(2, 2)});
  for (std::size_t i = 0; i < 3; ++i) A(i, i) += damping * (std::abs(H(i, i)) + 1e-4 * largest);
  std::array<bool, 3> free;
  for (std::size_t i = 0; i < 3; ++i) free[i] = gradient[i] > 0 ? drive[i] > 0 : drive[i] < 1;
  vec3 fixed;  // moves of those that stop at a bound
  for (;;) {
    const vec3 toward = A * fixed;
    vec3 move;
    if (!solve_free(A, -1.0 * (gradient + toward), free, move)) return false;
    bool stopped = false;
    for (std::size_t i = 0; i < 3; ++i) {
      next[i] = drive[i] + (free[i] ? move[i] : fixed[i]);
      if (next[i] >= 0 && next[i] <= 1) continue;
      next[i] = std::clamp(next[i], 0.0, 1.0);
      fixed[i] = next[i] - drive[i];
      free[i] = false;
      stopped = true;
    }
    if (!stopped) return true;
  }
}

/// What J'J leaves out of half the second derivatives of the cost, learnt from step to step: the secant update of
/// Dennis, Gay and Welsch, ACM Transactions on Mathematical Software 7 (1981), equations 2.8 and 2.9.
/// `step` leads from the old place to the new one; `change` is that of the gradient J'r; `bend` is
/// (J_new - J_old)' r_new.
inline void update_secant(mat3& S, const vec3& step, const vec3& change, const vec3& bend) {
  const auto inner = [](const vec3& a, const vec3& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; };
  const double along = inner(step, change), curved = inner(step, S * step);
  if (!(std::abs(along) > 1e-300)) return;
  if (curved != 0) S = S * std::min(1.0, std::abs(inner(step, bend)) / std::abs(curved));
  const vec3 missing = bend - S * step;
  const double scale = inner(step, missing) / along;
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) {
      S(i, j) += (missing[i] * change[j] + change[i] * missing[j] - scale * change[i] * change[j]) / along;
    }
  }
}

/// Drives that make the squares of what `errors` gives least, searched from `start` by damped Gauss-Newton steps with
/// a secant term. `errors(drive)` returns three values and their slopes. It ends at a minimum next to the start.
template <class Errors>
least_squares minimize(const Errors& errors, const vec3& start, const least_squares_options& o = {}) {
  const auto transposed_times = [](const mat3& J, const vec3& r) {
    vec3 g;
    for (std::size_t c = 0; c < 3; ++c) g[c] = J(0, c) * r[0] + J(1, c) * r[1] + J(2, c) * r[2];
    return g;
  };
  least_squares best;
  for (std::size_t c = 0; c < 3; ++c) best.drive[c] = start[c] > 0 ? std::min(start[c], 1.0) : 0;  // not a number: 0
  values_and_slopes e = errors(best.drive);
  best.cost = dist2(e.value, {});
  vec3 gradient = transposed_times(e.slopes, e.value);
  mat3 S;
  double damping = 0;
  while (best.steps < o.steps && best.cost > o.enough && damping < 1e12) {
    mat3 H = S;
    for (std::size_t c = 0; c < 3; ++c) H.col[c] = H.col[c] + transposed_times(e.slopes, e.slopes.col[c]);
    vec3 next;
    if (!bounded_step(H, gradient, damping, best.drive, next)) {
      damping = std::max(10 * damping, 1e-3);
      continue;
    }
    const vec3 step = next - best.drive;
    if (!(dist2(step, {}) > o.step_end * o.step_end)) break;
    const values_and_slopes tried = errors(next);
    const double cost = dist2(tried.value, {});
    ++best.steps;
    if (!(cost < best.cost)) {
      damping = std::max(10 * damping, 1e-2);
      continue;
    }
    const vec3 new_gradient = transposed_times(tried.slopes, tried.value);
    update_secant(S, step, new_gradient - gradient, new_gradient - transposed_times(e.slopes, tried.value));
    damping = damping > 1e-6 ? damping / 10 : 0;
    best.drive = next;
    best.cost = cost;
    e = tried;
    gradient = new_gradient;
  }
  return best;
}

}  // namespace corvantile
