#pragma once
// The singular value decomposition from EISPACK, and the pseudo-inverse built on it.

#include <optional>
#include <span>

#include "corvantile/numerics/matrix.hpp"

namespace corvantile {

/// A = U S V^T for an m x n matrix, with k = min(m, n): `u` is m x k and `v` n x k, both with orthonormal columns;
/// `s` is k x k and diagonal.
struct svd_result {
  matrix u;
  matrix s;
  matrix v;
};

/// The singular values are non-negative but not sorted. A wide matrix is decomposed through its transpose.
/// A matrix with NaNs or infinities gives meaningless factors; nothing is reported.
svd_result svd(const matrix& a);

/// The Moore-Penrose pseudo-inverse, n x m. Singular values below `tol` count as zero. The default is 2^-52 times the
/// largest magnitude of an element of `a` (not of the singular values, and for any matrix size). For the zero matrix
/// that is 0, and the pseudo-inverse is not finite; with an explicit positive `tol` it is zero.
matrix pinv(const matrix& a, std::optional<double> tol = {});

/// EISPACK's SVD: Householder bidiagonalisation, then implicitly shifted QR. After Golub and Reinsch, Numerische
/// Mathematik 14 (1970); Smith et al., EISPACK Guide (1976), in the version of 1983. On entry `u` is the m x n
/// matrix; on return it is U if `matu`, otherwise work space. `w` receives the n singular values, non-negative and
/// unsorted. `v`, n x n, receives V if `matv` and is left alone otherwise. m and n are not 0. Returns 0, or k if
/// singular value k, counted from 1, has not converged in 30 iterations; the values after it are correct then.
int oldsvd(matrix& u, std::span<double> w, matrix& v, bool matu, bool matv);

/// sqrt(a^2 + b^2) without destructive overflow or underflow. After Moler and Morrison, IBM J. Res. Dev. 27 (1983).
double pythag(double a, double b);

}  // namespace corvantile
