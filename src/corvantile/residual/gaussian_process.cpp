#include "corvantile/residual/gaussian_process.hpp"

#include <Eigen/Cholesky>
#include <Eigen/Core>
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <set>

#include "corvantile/residual/in_parallel.hpp"
#include "corvantile/residual/kernel.hpp"

namespace corvantile {
namespace {

using Eigen::ArrayXd;
using Eigen::Index;
using Eigen::MatrixXd;

// An Eigen index of a standard one, and back.
Index at(std::size_t i) { return static_cast<Index>(i); }
std::size_t at(Index i) { return static_cast<std::size_t>(i); }

MatrixXd in_rows(std::span<const vec3> v) {
  MatrixXd rows(at(v.size()), 3);
  for (std::size_t i = 0; i < v.size(); ++i) {
    for (std::size_t c = 0; c < 3; ++c) rows(at(i), at(c)) = v[i][c];
  }
  return rows;
}

vec3 row_of(const MatrixXd& m, Index i) { return {{m(i, 0), m(i, 1), m(i, 2)}}; }

std::vector<vec3> rows_of(const MatrixXd& m) {
  std::vector<vec3> v(at(m.rows()));
  for (std::size_t i = 0; i < v.size(); ++i) v[i] = row_of(m, at(i));
  return v;
}

// ---- All samples as centres ----

// The lower triangle of K + 0.1 I.
MatrixXd noisy_covariances(std::span<const vec3> drive, unsigned threads) {
  const drive_columns rows = columns_of(drive);
  MatrixXd K(rows.rows(), rows.rows());
  in_parallel(drive.size(), threads, [&](std::size_t j) {
    const Index below = rows.rows() - at(j);
    ArrayXd work(below);
    covariances(drive[j], rows.bottomRows(below), K.col(at(j)).tail(below).array(), work);
    K(at(j), at(j)) += noise_variance;
  });
  return K;
}

// The diagonal of (L L')^-1: the squared lengths of the columns of L^-1.
ArrayXd diagonal_of_inverse(const MatrixXd& L, unsigned threads) {
  constexpr Index block = 64;
  const Index n = L.rows();
  ArrayXd diagonal(n);
  in_parallel(at((n + block - 1) / block), threads, [&](std::size_t b) {
    const Index first = at(b) * block, below = n - first, columns = std::min(block, below);
    MatrixXd X = MatrixXd::Identity(below, columns);
    L.bottomRightCorner(below, below).triangularView<Eigen::Lower>().solveInPlace(X);
    diagonal.segment(first, columns) = X.colwise().squaredNorm().transpose().array();
  });
  return diagonal;
}

learnt_process learn_exactly(std::span<const vec3> drive, std::span<const vec3> value, unsigned threads) {
  MatrixXd K = noisy_covariances(drive, threads);
  const Eigen::LLT<Eigen::Ref<MatrixXd>> factored(K);  // in place: K becomes L
  const MatrixXd weight = factored.solve(in_rows(value));
  const ArrayXd diagonal = diagonal_of_inverse(K, threads);
  learnt_process p{{{drive.begin(), drive.end()}, rows_of(weight)}, {}};
  for (std::size_t i = 0; i < drive.size(); ++i) p.left_out.push_back({i, p.f.weight[i] / diagonal[at(i)]});
  return p;
}

// ---- Fewer centres than samples ----

// The preferred samples, and of the others the first in each of 13^3 cells of the cube: few enough to choose from.
std::vector<std::size_t> candidates(std::span<const vec3> drive, std::size_t preferred) {
  constexpr std::size_t cells = 13;
  std::vector<std::size_t> chosen;
  std::vector<bool> taken(cells * cells * cells);
  for (std::size_t i = 0; i < drive.size(); ++i) {
    std::size_t cell = 0;
    for (const double u : drive[i].v) cell = cell * cells + std::min(static_cast<std::size_t>(u * cells), cells - 1);
    if (i >= preferred && taken[cell]) continue;
    if (i >= preferred) taken[cell] = true;
    chosen.push_back(i);
  }
  return chosen;
}

struct chosen_centres {
  std::vector<vec3> drive;
  MatrixXd L;  // L L' is their covariance, without noise
};

// Pivoted Cholesky: each step takes the candidate that the ones before explain least, at first one of the preferred,
// up to half of all centres.
chosen_centres choose_centres(std::span<const vec3> from, std::size_t preferred, std::size_t limit) {
  constexpr double explained = 1e-3;  // variance that is not worth a centre, beside the noise of 0.1
  const drive_columns rows = columns_of(from);
  MatrixXd V(at(from.size()), at(limit));  // column k: covariances with centre k, less what those before explain
  ArrayXd left(rows.rows()), work(rows.rows());
  for (std::size_t i = 0; i < from.size(); ++i) left[at(i)] = own_covariance(from[i]);
  std::vector<Index> pivots;
  bool prefer = preferred > 0;
  while (pivots.size() < limit) {
    prefer = prefer && pivots.size() < limit / 2;
    Index p = 0;
    double most = left.head(prefer ? at(preferred) : left.size()).maxCoeff(&p);
    if (prefer && most < 10 * explained) {
      prefer = false;
      most = left.maxCoeff(&p);
    }
    if (most < explained) break;
    const Index k = at(pivots.size());
    covariances(from[at(p)], rows, V.col(k).array(), work);
    V.col(k).noalias() -= V.leftCols(k) * V.row(p).head(k).transpose();
    V.col(k) /= std::sqrt(most);
    V(p, k) = std::sqrt(most);
    left -= V.col(k).array().square();
    left[p] = 0;
    pivots.push_back(p);
  }
  chosen_centres c{{}, MatrixXd::Zero(at(pivots.size()), at(pivots.size()))};
  for (std::size_t i = 0; i < pivots.size(); ++i) {
    c.drive.push_back(from[at(pivots[i])]);
    c.L.row(at(i)).head(at(i) + 1) = V.row(pivots[i]).head(at(i) + 1);
  }
  return c;
}

// Sums over all samples, k being the covariances of one with the centres and y its value.
struct normal_equations {
  MatrixXd G;  // of k k'; the lower triangle, in tiles
  MatrixXd b;  // of k y'
};

// In columns: the covariances of each of `drive` with the centres.
MatrixXd covariances_with(const drive_columns& centres, std::span<const vec3> drive, unsigned threads) {
  MatrixXd k(centres.rows(), at(drive.size()));
  in_parallel(drive.size(), threads, [&](std::size_t i) {
    ArrayXd work(centres.rows());
    covariances(drive[i], centres, k.col(at(i)).array(), work);
  });
  return k;
}

normal_equations summed(const drive_columns& centres, std::span<const vec3> drive, std::span<const vec3> value,
                        unsigned threads) {
  constexpr std::size_t at_once = 1024;
  constexpr Index tile = 128;
  const Index m = centres.rows();
  normal_equations sum{MatrixXd::Zero(m, m), MatrixXd::Zero(m, 3)};
  const std::size_t tiles = at((m + tile - 1) / tile);
  for (std::size_t from = 0; from < drive.size(); from += at_once) {
    const std::size_t n = std::min(at_once, drive.size() - from);
    const MatrixXd k = covariances_with(centres, drive.subspan(from, n), threads);
    in_parallel(tiles * tiles, threads, [&](std::size_t t) {
      const Index i = at(t / tiles) * tile, j = at(t % tiles) * tile;
      if (i < j) return;
      const Index rows = std::min(tile, m - i), columns = std::min(tile, m - j);
      sum.G.block(i, j, rows, columns).noalias() += k.middleRows(i, rows) * k.middleRows(j, columns).transpose();
    });
    sum.b.noalias() += k * in_rows(value.subspan(from, n));
  }
  return sum;
}

// L^-1 G L'^-1 + 0.1 I, for the lower triangle of G.
MatrixXd whitened(const MatrixXd& G, const MatrixXd& L) {
  MatrixXd X = G.selfadjointView<Eigen::Lower>();
  L.triangularView<Eigen::Lower>().solveInPlace(X);
  MatrixXd W = X.transpose();
  L.triangularView<Eigen::Lower>().solveInPlace(W);
  W.diagonal().array() += noise_variance;
  return W;
}

learnt_process learn_by_centres(std::span<const vec3> drive, std::span<const vec3> value, std::size_t preferred,
                                unsigned threads, const gaussian_process_limits& limits) {
  const double share = static_cast<double>(limits.centres_at_work) / static_cast<double>(drive.size());
  const auto most = static_cast<std::size_t>(static_cast<double>(limits.centres) * std::sqrt(std::min(1.0, share)));
  std::vector<vec3> pool;
  for (const std::size_t i : candidates(drive, preferred)) pool.push_back(drive[i]);
  const chosen_centres c = choose_centres(pool, preferred, std::min(most, pool.size()));
  const drive_columns centres = columns_of(c.drive);
  const auto L = c.L.triangularView<Eigen::Lower>();

  normal_equations sum = summed(centres, drive, value, threads);
  MatrixXd W = whitened(sum.G, c.L);
  sum.G.resize(0, 0);
  const Eigen::LLT<Eigen::Ref<MatrixXd>> factored(W);
  const MatrixXd weight = L.transpose().solve(factored.solve(L.solve(sum.b)));
  learnt_process p{{c.drive, rows_of(weight)}, {}};

  const std::size_t step = (drive.size() + limits.left_out - 1) / limits.left_out;
  std::vector<vec3> left_out;
  for (std::size_t i = 0; i < drive.size(); i += step) left_out.push_back(drive[i]);
  MatrixXd k = covariances_with(centres, left_out, threads);
  const MatrixXd predicted = k.transpose() * weight;
  L.solveInPlace(k);
  factored.matrixL().solveInPlace(k);
  for (std::size_t i = 0; i < left_out.size(); ++i) {
    const double leverage = k.col(at(i)).squaredNorm();
    p.left_out.push_back({i * step, (value[i * step] - row_of(predicted, at(i))) / (1 - leverage)});
  }
  return p;
}

double matern52_of(double distance, double scale) {
  const double s = std::sqrt(5.0) * distance / scale;
  return (1 + s * (1 + s / 3)) * std::exp(-s);
}

}  // namespace

learnt_process learn(std::span<const vec3> drive, std::span<const vec3> value, std::size_t preferred,
                     unsigned threads, const gaussian_process_limits& limits) {
  if (drive.size() <= limits.exact) return learn_exactly(drive, value, threads);
  return learn_by_centres(drive, value, preferred, threads, limits);
}

vec3 value_at(const gaussian_process& f, const vec3& u) {
  vec3 sum;
  for (std::size_t i = 0; i < f.centre.size(); ++i) {
    const vec3& v = f.centre[i];
    double k = matern52_of(std::sqrt(dist2(u, v)), joint_scale);
    for (std::size_t c = 0; c < 3; ++c) k += channel_weight * matern52_of(std::abs(u[c] - v[c]), channel_scale);
    k += gray_weight * closeness_to_gray(u) * closeness_to_gray(v) *
         matern52_of(std::abs(mean_of(u) - mean_of(v)), gray_scale);
    sum = sum + k * f.weight[i];
  }
  return sum;
}

}  // namespace corvantile
