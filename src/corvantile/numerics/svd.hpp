#pragma once
// The singular value decomposition after EISPACK, and the pseudo-inverse made from it.

#include <optional>
#include <span>

#include "corvantile/numerics/matrix.hpp"

namespace corvantile {

/// A = U S V^T of an m x n matrix, with k = min(m, n): `u` is m x k and `v` n x k, both with orthonormal columns,
/// `s` is k x k and diagonal.
struct svd_result {
  matrix u;
  matrix s;
  matrix v;
};

/// The singular values are non-negative but not sorted. A wide matrix is decomposed through its transpose.
/// A matrix with NaNs or infinities gives meaningless factors; nothing is reported.
svd_result svd(const matrix& a);

/// The Moore-Penrose pseudo-inverse, n x m. Singular values below `tol` count as zero; its default is 2^-52 times the
/// largest magnitude of an element of `a` (not of the singular values, and whatever the size). That makes it 0 for
/// the zero matrix, whose pseudo-inverse is then not finite; an explicit positive `tol` gives zero.
matrix pinv(const matrix& a, std::optional<double> tol = {});

/// EISPACK's SVD: Householder bidiagonalisation, then implicitly shifted QR. After Golub and Reinsch, Numerische
/// Mathematik 14 (1970); Smith et al., EISPACK Guide (1976), in the version of 1983. `u` is the m x n matrix on entry
/// and U on return if `matu`, else work space; `w` takes the n singular values, non-negative and unsorted; `v`, n x
/// n, takes V if `matv` and is left alone otherwise; m and n are not 0. Returns 0, or k when singular value k,
/// counted from 1, has not converged in 30 iterations: then those behind it are right.
int oldsvd(matrix& u, std::span<double> w, matrix& v, bool matu, bool matv);

/// sqrt(a^2 + b^2) without destructive overflow or underflow. After Moler and Morrison, IBM J. Res. Dev. 27 (1983).
double pythag(double a, double b);

}  // namespace corvantile
