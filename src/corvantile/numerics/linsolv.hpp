#pragma once
// Dense linear systems: LINPACK, and the level-1 BLAS that it uses.
//
// After Dongarra, Moler, Bunch and Stewart, LINPACK Users' Guide (SIAM 1979), and Lawson, Hanson, Kincaid and Krogh,
// ACM TOMS 5 (1979). The single-precision names stay, but everything here is double. Matrices are column-major with
// leading dimension `lda`: element (i, j) is a[i + j lda]. Rows, columns and pivots count from 0.
//
// Sums run from the first term to the last. The reference BLAS unrolls its loops by five or six but adds in the same
// order, so the bits are the same.

#include <array>
#include <cstddef>
#include <span>

#include "corvantile/numerics/matrix.hpp"

namespace corvantile {

/// The inverse of a square matrix. A singular matrix gives infinities or NaNs; nothing is reported.
matrix inv(const matrix& a);
/// The same steps and bits, on the stack.
mat3 inv(const mat3& a);
/// Factors the n x n matrix in place into L U by Gaussian elimination with partial pivoting. `ipvt` receives the n
/// pivot rows. Returns 0, or k if pivot k (counted from 1; the last one if there are several) is zero. The factors
/// are complete even then, but `sgesl` and `sgedi` will divide by that pivot.
int sgefa(std::span<double> a, std::size_t lda, std::size_t n, std::span<std::size_t> ipvt);

/// Solves A x = b (job 0) or transpose(A) x = b (any other job) with the factors from `sgefa`; `b` becomes x.
void sgesl(std::span<const double> a, std::size_t lda, std::size_t n, std::span<const std::size_t> ipvt,
           std::span<double> b, int job);

/// From the factors: the inverse, in their place (job 1), the determinant (job 10), or both (job 11). The determinant
/// is det[0] 10^det[1] with 1 <= |det[0]| < 10, or det[0] = 0. `work` has n elements.
void sgedi(std::span<double> a, std::size_t lda, std::size_t n, std::span<const std::size_t> ipvt,
           std::array<double, 2>& det, std::span<double> work, int job);

// ---- Held ready: no job calls these ----

/// Overwrites `b` with the solution x of A x = b, with A square. A singular matrix gives what it gives in `inv`.
void solve(const matrix& a, std::span<double> b);

/// Factors as `sgefa` does and returns an estimate of 1 / (|A| |A^-1|) in the 1-norm. An estimate near 0 means a
/// matrix that is singular to working precision; `z` (n elements) is then an approximate null vector.
double sgeco(std::span<double> a, std::size_t lda, std::size_t n, std::span<std::size_t> ipvt, std::span<double> z);

// Level 1. Vectors have `n` elements, `inc` apart. Routines with two strides read a vector with a negative stride
// from its far end backwards; `sscal`, `sasum` and `isamax` need a positive stride.

/// x . y
double sdot(std::size_t n, std::span<const double> x, std::ptrdiff_t incx, std::span<const double> y,
            std::ptrdiff_t incy);
/// y += alpha x. If alpha is zero, y stays as it is, even if x is not finite.
void saxpy(std::size_t n, double alpha, std::span<const double> x, std::ptrdiff_t incx, std::span<double> y,
           std::ptrdiff_t incy);
/// Swaps x and y.
void sswap(std::size_t n, std::span<double> x, std::ptrdiff_t incx, std::span<double> y, std::ptrdiff_t incy);
/// x *= alpha
void sscal(std::size_t n, double alpha, std::span<double> x, std::ptrdiff_t incx);
/// Sum of |x_i|
double sasum(std::size_t n, std::span<const double> x, std::ptrdiff_t incx);
/// Index, from 0, of the first element of largest magnitude; 0 if there are none.
std::size_t isamax(std::size_t n, std::span<const double> x, std::ptrdiff_t incx);

}  // namespace corvantile
