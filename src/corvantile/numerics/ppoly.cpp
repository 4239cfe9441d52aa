#include "corvantile/numerics/ppoly.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include "corvantile/numerics/bisection.hpp"

namespace corvantile {
namespace {

/// The function whose pieces are op(piece).
template <class Op>
ppoly on_pieces(const ppoly& pp, Op op) {
  ppoly r{pp.knots, {}};
  r.polys.reserve(pp.polys.size());
  for (const polynomial& p : pp.polys) r.polys.push_back(op(p));
  return r;
}

/// The function whose pieces are op(piece of a, piece of b), on common knots.
template <class Op>
ppoly on_common_pieces(const ppoly& a, const ppoly& b, Op op) {
  const auto combine = [&op](const ppoly& am, const ppoly& bm) {
    ppoly r{am.knots, {}};
    if (bm.polys.empty()) return r;
    r.polys.reserve(am.polys.size());
    for (std::size_t j = 0; j < am.polys.size(); ++j)
      r.polys.push_back(op(am.polys[j], bm.polys[std::min(j, bm.polys.size() - 1)]));
    return r;
  };
  // Equal knots need no merging: it would only copy.
  if (a.knots == b.knots) return combine(a, b);
  ppoly am, bm;
  merge_knots(a, b, am, bm);
  return combine(am, bm);
}

/// Solves f(x[i]) = y[i] for each i.
void solve_each(const ppoly& pp, std::span<const double> y, double a, double b, double tol, std::span<double> x) {
  if (y.empty()) return;
  const bisection start([&pp](double at) { return ppval(pp, at); }, a, b);
  const auto below = [&](double target) { return [&pp, target](double mid) { return ppval(pp, mid) < target; }; };

  // The first target decides how many steps all take. Rounding makes the other brackets up to an ulp wider or
  // narrower than its own.
  bisection first = start;
  std::size_t steps = 0;
  for (bool moves = true; moves && first.wider_than(tol); ++steps) moves = first.step(below(y[0]));
  x[0] = first.mid;
  for (std::size_t i = 1; i < y.size(); ++i) {
    bisection other = start;
    for (std::size_t s = 0; s < steps; ++s) other.step(below(y[i]));
    x[i] = other.mid;
  }
}

}  // namespace

ppoly hermite2ppoly(std::span<const double> x, std::span<const double> y, std::span<const double> d) {
  ppoly pp{{x.begin(), x.end()}, {}};
  if (x.empty()) return pp;
  pp.polys.reserve(x.size() - 1);
  for (std::size_t i = 0; i + 1 < x.size(); ++i) {
    const double h = x[i + 1] - x[i];
    const double A = y[i + 1] - y[i] - h * d[i];
    const double B = d[i + 1] - d[i];
    const double h3 = h * h * h;
    pp.polys.push_back(makepoly({y[i], d[i], (3 * h * A - h * h * B) / h3, (h * B - 2 * A) / h3}));
  }
  return pp;
}

void pp_knots(const ppoly& pp, std::span<double> out) { std::ranges::copy(pp.knots, out.begin()); }

void pp_polys(const ppoly& pp, std::span<polynomial> out) { std::ranges::copy(pp.polys, out.begin()); }

polynomial pp_getpoly(const ppoly& pp, int i) {
  if (pp.polys.empty()) return {};
  return pp.polys[static_cast<std::size_t>(std::clamp(i, 0, pp_poly_count(pp) - 1))];
}

bool pp_setpoly(ppoly& pp, const polynomial& p, int i) {
  if (i < 0 || i >= pp_poly_count(pp)) return false;
  pp.polys[static_cast<std::size_t>(i)] = p;
  return true;
}

double ppval(const ppoly& pp, double x) {
  const std::size_t pieces = pp.polys.size();
  if (pieces == 0) return std::numeric_limits<double>::quiet_NaN();
  const double* const k = pp.knots.data();
  // Everything right of the last piece's left knot belongs to that piece, so its right knot is never looked at. NaN
  // ends there too. Knots are few: a scan beats a bisection.
  std::size_t j = 0;
  while (j + 1 < pieces && !(k[j + 1] >= x)) ++j;
  return polyval(pp.polys[j], x - k[j]);
}

ppoly ppint(const ppoly& pp, double c) {
  ppoly r{pp.knots, {}};
  r.polys.reserve(pp.polys.size());
  for (std::size_t j = 0; j < pp.polys.size(); ++j) {
    r.polys.push_back(polyint(pp.polys[j], c));
    c = polyval(r.polys[j], pp.knots[j + 1] - pp.knots[j]);
  }
  return r;
}

ppoly ppder(const ppoly& pp) { return on_pieces(pp, polyder); }

double ppdefint(const ppoly& pp, double a, double b) {
  const ppoly F = ppint(pp);
  return ppval(F, b) - ppval(F, a);
}

double ppsolve_s(const ppoly& pp, double y, double a, double b, double tol) {
  return solve_by_bisection([&pp](double x) { return ppval(pp, x); }, y, a, b, tol);
}

std::vector<double> ppsolve_v(const ppoly& pp, std::span<const double> y, double a, double b, double tol) {
  std::vector<double> x(y.size());
  solve_each(pp, y, a, b, tol, x);
  return x;
}

matrix ppsolve_m(const ppoly& pp, const matrix& y, double a, double b, double tol) {
  matrix x(y.rows(), y.cols());
  solve_each(pp, y.data(), a, b, tol, x.data());
  return x;
}

ppoly insert_knot(const ppoly& pp, double x) {
  if (pp.polys.empty()) return pp;
  double dmin = std::numeric_limits<double>::infinity();
  double kmax = 0.0;
  for (const double k : pp.knots) {
    dmin = std::min(dmin, std::abs(k - x));
    kmax = std::max(kmax, std::abs(k));
  }
  if (dmin <= 10 * std::numeric_limits<double>::epsilon() * kmax) return pp;

  ppoly r = pp;
  const std::vector<double>& k = pp.knots;
  const std::size_t pieces = pp.polys.size();
  const auto add = [&r](std::size_t j, double knot, polynomial p) {  // as knot j and piece j, or the last piece
    const std::size_t piece = std::min(j, r.polys.size());
    r.knots.insert(r.knots.begin() + static_cast<std::ptrdiff_t>(j), knot);
    r.polys.insert(r.polys.begin() + static_cast<std::ptrdiff_t>(piece), std::move(p));
  };
  if (x < k[0]) {
    add(0, x, poly_arg_shift(pp.polys[0], k[0] - x));
  } else if (x > k[pieces]) {
    add(pieces + 1, x, poly_arg_shift(pp.polys[pieces - 1], -(k[pieces] - k[pieces - 1])));
  } else {
    std::size_t j = 0;
    while (j + 1 < pieces && !(k[j + 1] > x)) ++j;  // a NaN ends in the last piece
    add(j + 1, x, poly_arg_shift(pp.polys[j], -(x - k[j])));
  }
  return r;
}

void merge_knots(const ppoly& a, const ppoly& b, ppoly& a_out, ppoly& b_out) {
  ppoly am = a;
  ppoly bm = b;
  for (const double k : b.knots) am = insert_knot(am, k);
  for (const double k : a.knots) bm = insert_knot(bm, k);
  a_out = std::move(am);
  b_out = std::move(bm);
}

ppoly real_plus_pp(double r, const ppoly& pp) {
  return on_pieces(pp, [r](const polynomial& p) { return r + p; });
}
ppoly pp_plus_real(const ppoly& pp, double r) { return real_plus_pp(r, pp); }
ppoly pp_plus_pp(const ppoly& a, const ppoly& b) { return on_common_pieces(a, b, poly_plus_poly); }

ppoly real_minus_pp(double r, const ppoly& pp) {
  return on_pieces(pp, [r](const polynomial& p) { return r - p; });
}
ppoly pp_minus_real(const ppoly& pp, double r) {
  return on_pieces(pp, [r](const polynomial& p) { return p - r; });
}
ppoly pp_minus_pp(const ppoly& a, const ppoly& b) { return on_common_pieces(a, b, poly_minus_poly); }

ppoly real_times_pp(double r, const ppoly& pp) {
  return on_pieces(pp, [r](const polynomial& p) { return r * p; });
}
ppoly pp_times_real(const ppoly& pp, double r) { return real_times_pp(r, pp); }
ppoly pp_times_pp(const ppoly& a, const ppoly& b) { return on_common_pieces(a, b, poly_times_poly); }

ppoly pp_over_real(const ppoly& pp, double r) { return pp_times_real(pp, 1.0 / r); }

ppoly pp_to_power(const ppoly& pp, int n) {
  ppoly power = on_pieces(pp, [](const polynomial&) { return poly_identity(); });
  for (int i = 0; i < n; ++i) power = power * pp;
  return power;
}

}  // namespace corvantile
