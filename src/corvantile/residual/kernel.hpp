#pragma once
// The covariance of a display's residual at two drives, for whole columns of drives at once.
//
//   k(u, v) = m(|u - v| / 0.4)
//           + 0.1 (m(|u_r - v_r| / 0.1) + m(|u_g - v_g| / 0.1) + m(|u_b - v_b| / 0.1))
//           + 0.3 c(u) c(v) m(|u_mean - v_mean| / 0.1)
//   m(t) = (1 + s + s^2 / 3) exp(-s),  s = sqrt(5) t
//   c(u) = 1 / (1 + (d / 0.06)^2)^2,  d the distance of u from the gray axis
// with m the Matern function of order 5/2 (Rasmussen and Williams, Gaussian Processes for Machine Learning, 2006,
// equation 4.17). The first term learns what channels do together, the second what is left of each tone curve, the
// third what is particular to grays: measured in a row, and often calibrated, they differ from their neighbours.
// On held-out patches of four real displays the third term took a tenth off the error near gray, and a fifth on the
// gray axis; the numbers may double or halve without much effect.

#include <Eigen/Core>
#include <span>

#include "corvantile/numerics/matrix.hpp"

namespace corvantile {

inline constexpr double joint_scale = 0.4;     ///< length scale of the term over all channels; its variance is 1
inline constexpr double channel_scale = 0.1;   ///< length scale of the terms of one channel
inline constexpr double channel_weight = 0.1;  ///< and their variance
inline constexpr double gray_scale = 0.1;      ///< length scale, along the axis, of the term of grays
inline constexpr double gray_weight = 0.3;     ///< and its variance
inline constexpr double gray_width = 0.06;     ///< how far from the axis it reaches
inline constexpr double noise_variance = 0.1;  ///< of a patch

inline double mean_of(const vec3& u) { return (u[0] + u[1] + u[2]) / 3; }

/// c(u), 1 on the gray axis.
inline double closeness_to_gray(const vec3& u) {
  const double s = mean_of(u);
  const double q = 1 + dist2(u, {{s, s, s}}) / (gray_width * gray_width);
  return 1 / (q * q);
}

/// m of distances, in place: they come as distance over length scale.
template <class Array>
void matern52(Array&& t) {
  t *= 2.2360679774997896964;  // the square root of 5
  t = (1 + t * (1 + t * (1.0 / 3))) * (-t).exp();
}

/// n drives, one a row; columns are red, green, blue, their mean, and the closeness to gray.
using drive_columns = Eigen::Array<double, Eigen::Dynamic, 5>;

inline drive_columns columns_of(std::span<const vec3> drives) {
  drive_columns columns(static_cast<Eigen::Index>(drives.size()), 5);
  for (std::size_t i = 0; i < drives.size(); ++i) {
    const vec3& u = drives[i];
    columns.row(static_cast<Eigen::Index>(i)) << u[0], u[1], u[2], mean_of(u), closeness_to_gray(u);
  }
  return columns;
}

/// Writes k(u, v_i) for each row v_i of `v` to `k`, which has as many rows. `work` is overwritten.
template <class Column, class Rows>
void covariances(const vec3& u, const Rows& v, Column&& k, Eigen::ArrayXd& work) {
  k = ((v.col(0) - u[0]).square() + (v.col(1) - u[1]).square() + (v.col(2) - u[2]).square()).sqrt() / joint_scale;
  matern52(k);
  for (int c = 0; c < 3; ++c) {
    work = (v.col(c) - u[static_cast<std::size_t>(c)]).abs() / channel_scale;
    matern52(work);
    k += channel_weight * work;
  }
  work = (v.col(3) - mean_of(u)).abs() / gray_scale;
  matern52(work);
  k += gray_weight * closeness_to_gray(u) * v.col(4) * work;
}

/// k(u, u).
inline double own_covariance(const vec3& u) {
  const double c = closeness_to_gray(u);
  return 1 + 3 * channel_weight + gray_weight * c * c;
}

}  // namespace corvantile
