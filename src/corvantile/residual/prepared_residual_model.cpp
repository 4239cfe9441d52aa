#include "corvantile/residual/prepared_residual_model.hpp"

#include <Eigen/Core>
#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <vector>

#include "corvantile/residual/in_parallel.hpp"
#include "corvantile/residual/kernel.hpp"
#include "corvantile/residual/uniform_colour.hpp"
#include "corvantile/utils/failure.hpp"

namespace corvantile {
namespace {

using Eigen::ArrayXd;

constexpr std::size_t pieces = 1024;  // of a table

// The place of a table's knot.
constexpr double at_knot(std::size_t i) { return static_cast<double>(i) / pieces; }

// N functions of one number from 0 to 1.
template <std::size_t N>
class hermite_table {
 public:
  struct knot {
    std::array<double, N> value{}, slope{};  // slopes are per piece
  };
  knot& operator[](std::size_t i) { return knot_[i]; }

  // Adds to `value`, and writes the slopes per unit.
  void add(double u, std::array<double, N>& value, std::array<double, N>& slope) const {
    const double x = u * pieces;
    const std::size_t i = std::min(static_cast<std::size_t>(x), pieces - 1);
    const double t = x - static_cast<double>(i), s = 1 - t;
    const knot &a = knot_[i], &b = knot_[i + 1];
    const double va = (1 + 2 * t) * s * s, vb = (1 + 2 * s) * t * t, sa = t * s * s, sb = -s * t * t;
    const double dv = 6 * t * s, da = s * (1 - 3 * t), db = t * (1 - 3 * s);
    for (std::size_t k = 0; k < N; ++k) {
      value[k] += va * a.value[k] + vb * b.value[k] + sa * a.slope[k] + sb * b.slope[k];
      slope[k] = pieces * (dv * (b.value[k] - a.value[k]) + da * a.slope[k] + db * b.slope[k]);
    }
  }

  // Whether each number is finite.
  bool finite() const {
    double sum = 0;
    for (const knot& k : knot_) {
      for (std::size_t f = 0; f < N; ++f) sum += k.value[f] + k.slope[f];
    }
    return std::isfinite(sum);
  }

 private:
  std::vector<knot> knot_ = std::vector<knot>(pieces + 1);
};

// The centres of a residual, by columns.
struct centre_columns {
  drive_columns at;
  std::array<ArrayXd, 3> weight;
  explicit centre_columns(const gaussian_process& f) : at(columns_of(f.centre)) {
    for (std::size_t k = 0; k < 3; ++k) {
      weight[k].resize(at.rows());
      for (std::size_t i = 0; i < f.weight.size(); ++i) weight[k][static_cast<Eigen::Index>(i)] = f.weight[i][k];
    }
  }
};

// Adds to functions `first` and on: variance sum of w_i m(|u - v_i| / scale), with m'(t) = -5/3 t (1 + s) exp(-s).
template <std::size_t N>
void add_sums(const ArrayXd& v, const std::array<ArrayXd, 3>& w, double scale, double variance, std::size_t first,
              hermite_table<N>& table) {
  for (std::size_t i = 0; i <= pieces; ++i) {
    const ArrayXd t = (at_knot(i) - v) / scale, s = std::sqrt(5.0) * t.abs(), e = variance * (-s).exp();
    const ArrayXd value = (1 + s * (1 + s * (1.0 / 3))) * e;
    const ArrayXd slope = (-5.0 / 3 / scale / pieces) * t * (1 + s) * e;
    for (std::size_t k = 0; k < 3; ++k) {
      table[i].value[first + k] = (w[k] * value).sum();
      table[i].slope[first + k] = (w[k] * slope).sum();
    }
  }
}

// The term over all channels at the points of a grid.
spline_grid sampled_joint_term(const centre_columns& centres, unsigned threads) {
  constexpr std::size_t n = spline_grid::points;
  std::vector<vec3> samples(n * n * n);
  const auto square = [&](Eigen::Index c, std::size_t i) -> ArrayXd {
    return (centres.at.col(c) - spline_grid::coordinate(i)).square();
  };
  in_parallel(n * n, threads, [&](std::size_t ij) {
    const ArrayXd across = square(0, ij / n) + square(1, ij % n);
    ArrayXd k(across.size());
    for (std::size_t z = 0; z < n; ++z) {
      k = (across + square(2, z)).sqrt() / joint_scale;
      matern52(k);
      for (std::size_t f = 0; f < 3; ++f) samples[ij * n + z][f] = (centres.weight[f] * k).sum();
    }
  });
  return spline_grid(samples);
}

// What channel c adds to X, Y, Z, each over the white's.
void fill_additive(const monitor& mon, std::size_t c, hermite_table<6>& table) {
  const ppoly &tone = mon.inpcurve[c], tone_slope = ppder(tone);
  const ppoly x = (mon.Xmax[c] / mon.whitepoint[0]) * mon.xcurve[c], x_slope = ppder(x);
  const ppoly z = (mon.Zmax[c] / mon.whitepoint[2]) * mon.zcurve[c], z_slope = ppder(z);
  const double y = mon.Ymax[c] / mon.whitepoint[1];
  for (std::size_t i = 0; i <= pieces; ++i) {
    const double m = ppval(tone, at_knot(i)), dm = ppval(tone_slope, at_knot(i)) / pieces;
    table[i].value = {ppval(x, m), y * m, ppval(z, m)};
    table[i].slope = {dm * ppval(x_slope, m), dm * y, dm * ppval(z_slope, m)};
  }
}

}  // namespace

struct prepared_residual_model::tables {
  std::array<hermite_table<6>, 3> channel;  // by its drive: X, Y, Z over the white's, then L, a, b
  hermite_table<3> gray;                    // by the mean drive, for drives on the gray axis: L, a, b
  std::optional<spline_grid> joint;         // none without a residual
};

prepared_residual_model::prepared_residual_model(const residual_model& model, unsigned threads)
    : white_(model.base.whitepoint), dark_share_(elementwise_quotient(model.base.darklight, white_)) {
  const auto made = std::make_shared<tables>();
  const centre_columns centres(model.residual);
  const bool used = !model.residual.centre.empty();
  in_parallel(4, threads, [&](std::size_t c) {
    if (c < 3) fill_additive(model.base, c, made->channel[c]);
    if (!used) return;
    if (c < 3) {
      add_sums(centres.at.col(static_cast<Eigen::Index>(c)), centres.weight, channel_scale, channel_weight, 3,
               made->channel[c]);
    } else {
      std::array<ArrayXd, 3> weight = centres.weight;
      for (ArrayXd& w : weight) w *= centres.at.col(4);
      add_sums(centres.at.col(3), weight, gray_scale, gray_weight, 0, made->gray);
    }
  });
  if (used) made->joint = sampled_joint_term(centres, threads);
  tables_ = made;
  dark_ = xyz({});
  if (!std::ranges::all_of(made->channel, &hermite_table<6>::finite) || !made->gray.finite() ||
      !std::isfinite(dark_[0] + dark_[1] + dark_[2])) {
    refuse_content(model.base.name, "the model shows colours that are not finite");
  }
}

values_and_slopes prepared_residual_model::lab(const vec3& drive) const {
  std::array<double, 6> value{dark_share_[0], dark_share_[1], dark_share_[2]};
  std::array<std::array<double, 6>, 3> slope;
  for (std::size_t c = 0; c < 3; ++c) tables_->channel[c].add(drive[c], value, slope[c]);
  std::array<value_and_slope, 3> f;
  for (std::size_t k = 0; k < 3; ++k) f[k] = lab_compand(value[k]);
  const vec3 additive{{116 * f[1].value - 16, 500 * (f[0].value - f[1].value), 200 * (f[1].value - f[2].value)}};
  mat3 additive_slopes;
  for (std::size_t c = 0; c < 3; ++c) {
    const double x = f[0].slope * slope[c][0], y = f[1].slope * slope[c][1], z = f[2].slope * slope[c][2];
    additive_slopes.col[c] = {{116 * y, 500 * (x - y), 200 * (y - z)}};
  }
  if (!tables_->joint) return {additive, additive_slopes};

  values_and_slopes r = (*tables_->joint)(drive);
  std::array<double, 3> gray{}, gray_slope;
  const double s = std::min(mean_of(drive), 1.0);
  tables_->gray.add(s, gray, gray_slope);
  // c = 1 / q^2 changes by -2 / q^3 dq, and q by 2 (u_c - s) / width^2 with drive c.
  const double per_width = 1 / (gray_width * gray_width), q = 1 + dist2(drive, {{s, s, s}}) * per_width;
  const double closeness = 1 / (q * q), by_distance = -4 * per_width * closeness / q;
  for (std::size_t k = 0; k < 3; ++k) {
    r.value[k] += additive[k] + value[3 + k] + closeness * gray[k];
    for (std::size_t c = 0; c < 3; ++c) {
      r.slopes(k, c) += additive_slopes(k, c) + slope[c][3 + k] + closeness * gray_slope[k] / 3 +
                        by_distance * (drive[c] - s) * gray[k];
    }
  }
  return r;
}

vec3 prepared_residual_model::xyz(const vec3& drive) const {
  vec3 u;
  for (std::size_t c = 0; c < 3; ++c) u[c] = std::clamp(drive[c], 0.0, 1.0);
  return lab2xyz_exact(lab(u).value, white_);
}

}  // namespace corvantile
