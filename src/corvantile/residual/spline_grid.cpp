#include "corvantile/residual/spline_grid.hpp"

#include <array>

namespace corvantile {
namespace {

constexpr std::size_t n = spline_grid::points;

// The four B-splines that are not 0 between two knots, at `t` of the way, and their slopes by `t`.
struct basis {
  std::array<double, 4> value, slope;
  explicit basis(double t) : basis(t, 1 - t) {}

 private:
  basis(double t, double s)
      : value{s * s * s / 6, (4 - 3 * t * t * (1 + s)) / 6, (4 - 3 * s * s * (1 + t)) / 6, t * t * t / 6},
        slope{-s * s / 2, t * (1.5 * t - 2), s * (2 - 1.5 * s), t * t / 2} {}
};

// Where a coordinate stands: between samples cell + 1 and cell + 2, `t` of the way, `cell` being the first of four
// coefficients.
struct place {
  std::size_t cell;
  double t;
  explicit place(double u) {
    const double x = u * spline_grid::cells;
    const std::size_t i = std::min(static_cast<std::size_t>(x), spline_grid::cells - 1);
    cell = i + spline_grid::margin - 1;
    t = x - static_cast<double>(i);
  }
};

// The first `n` samples at steps of `stride` become coefficients: (c[i - 1] + 4 c[i] + c[i + 1]) / 6 = f[i], by
// elimination, with c = f at both ends.
void prefilter(vec3* f, std::size_t stride) {
  std::array<double, n> upper{};
  for (std::size_t i = 1; i + 1 < n; ++i) {
    const double pivot = 1 / (4 - upper[i - 1]);
    upper[i] = pivot;
    f[i * stride] = pivot * (6 * f[i * stride] - f[(i - 1) * stride]);
  }
  for (std::size_t i = n - 1; i-- > 1;) f[i * stride] = f[i * stride] - upper[i] * f[(i + 1) * stride];
}

}  // namespace

spline_grid::spline_grid(std::span<const vec3> samples) : c_(n * n * n) {
  std::vector<vec3> f(samples.begin(), samples.end());
  const auto along = [&](std::size_t stride, std::size_t a_stride, std::size_t b_stride) {
    for (std::size_t a = 0; a < n; ++a) {
      for (std::size_t b = 0; b < n; ++b) prefilter(&f[a * a_stride + b * b_stride], stride);
    }
  };
  along(n * n, n, 1);
  along(n, n * n, 1);
  along(1, n * n, n);
  for (std::size_t i = 0; i < f.size(); ++i) c_[i] = {two_lanes{f[i][0], f[i][1]}, two_lanes{f[i][2], 0}};
}

values_and_slopes spline_grid::operator()(const vec3& u) const {
  const place px(u[0]), py(u[1]), pz(u[2]);
  const basis x(px.t), y(py.t), z(pz.t);
  // Sums for the value and the slopes along x, y, z; each of two lanes twice.
  std::array<coefficients, 4> sum{};
  for (std::size_t i = 0; i < 4; ++i) {
    std::array<coefficients, 3> plane{};  // value, slope along y, slope along z
    for (std::size_t j = 0; j < 4; ++j) {
      const coefficients* c = &c_[((px.cell + i) * n + py.cell + j) * n + pz.cell];
      coefficients line{}, line_slope{};
      for (std::size_t k = 0; k < 4; ++k) {
        const auto w = in_each_lane<two_lanes>(z.value[k]), d = in_each_lane<two_lanes>(z.slope[k]);
        line = {line.first + w * c[k].first, line.second + w * c[k].second};
        line_slope = {line_slope.first + d * c[k].first, line_slope.second + d * c[k].second};
      }
      const auto w = in_each_lane<two_lanes>(y.value[j]), d = in_each_lane<two_lanes>(y.slope[j]);
      plane[0] = {plane[0].first + w * line.first, plane[0].second + w * line.second};
      plane[1] = {plane[1].first + d * line.first, plane[1].second + d * line.second};
      plane[2] = {plane[2].first + w * line_slope.first, plane[2].second + w * line_slope.second};
    }
    const auto w = in_each_lane<two_lanes>(x.value[i]), d = in_each_lane<two_lanes>(x.slope[i]);
    const auto add = [&](std::size_t to, two_lanes by, const coefficients& what) {
      sum[to] = {sum[to].first + by * what.first, sum[to].second + by * what.second};
    };
    add(0, w, plane[0]);
    add(1, d, plane[0]);
    add(2, w, plane[1]);
    add(3, w, plane[2]);
  }
  const auto triple = [](const coefficients& c) { return vec3{{c.first[0], c.first[1], c.second[0]}}; };
  const double per_unit = cells;
  return {triple(sum[0]), {{per_unit * triple(sum[1]), per_unit * triple(sum[2]), per_unit * triple(sum[3])}}};
}

}  // namespace corvantile
