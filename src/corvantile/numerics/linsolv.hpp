#pragma once
// Dense linear systems after LINPACK and the level-1 BLAS it rests on.
//
// After Dongarra, Moler, Bunch and Stewart, LINPACK Users' Guide (SIAM 1979), and Lawson, Hanson, Kincaid and Krogh,
// ACM TOMS 5 (1979). The single-precision names stay; everything here is double. Matrices are column-major with
// leading dimension `lda`: element (i, j) is a[i + j lda]. Rows, columns and pivots count from 0.
//
// Sums run from the first term to the last. The reference BLAS unrolls its loops by five or six, but adds in the
// same order, so its results have the same bits.

#include <array>
#include <cstddef>
#include <span>

#include "corvantile/numerics/matrix.hpp"

namespace corvantile {

/// The inverse of a square matrix. A singular one gives infinities or NaNs, and nothing is reported.
matrix inv(const matrix& a);
/// The same steps and bits on the stack.
mat3 inv(const mat3& a);
/// Factors the n x n matrix in place into L U by Gaussian elimination with partial pivoting; `ipvt` takes n pivot
/// rows. Returns 0, or k when pivot k, counted from 1, is zero (the last such): the factors are complete even so,
/// but `sgesl` and `sgedi` will divide by it.
int sgefa(std::span<double> a, std::size_t lda, std::size_t n, std::span<std::size_t> ipvt);

/// Solves A x = b (job 0) or transpose(A) x = b (any other job) with the factors from `sgefa`; `b` becomes x.
void sgesl(std::span<const double> a, std::size_t lda, std::size_t n, std::span<const std::size_t> ipvt,
           std::span<double> b, int job);

/// From the factors: the inverse in place of them (job 1), the determinant (job 10), or both (job 11).
/// The determinant is det[0] 10^det[1] with 1 <= |det[0]| < 10, or det[0] = 0. `work` has n elements.
void sgedi(std::span<double> a, std::size_t lda, std::size_t n, std::span<const std::size_t> ipvt,
           std::array<double, 2>& det, std::span<double> work, int job);

// ---- Held ready: no job calls these ----

/// Overwrites `b` with the solution x of A x = b, A square. A singular matrix as in `inv`.
void solve(const matrix& a, std::span<double> b);

/// Factors as `sgefa` does and returns an estimate of 1 / (|A| |A^-1|) in the 1-norm: near 0 for a matrix that is
/// singular to working precision. `z` has n elements and ends as an approximate null vector where that is so.
double sgeco(std::span<double> a, std::size_t lda, std::size_t n, std::span<std::size_t> ipvt, std::span<double> z);

// Level 1. Vectors have `n` elements, `inc` apart. Where two strides are given, a negative one runs from the far end
// backwards; `sscal`, `sasum` and `isamax` want a positive one.

/// x . y
double sdot(std::size_t n, std::span<const double> x, std::ptrdiff_t incx, std::span<const double> y,
            std::ptrdiff_t incy);
/// y += alpha x; a zero alpha leaves y alone, even where x is not finite.
void saxpy(std::size_t n, double alpha, std::span<const double> x, std::ptrdiff_t incx, std::span<double> y,
           std::ptrdiff_t incy);
/// Exchanges x and y.
void sswap(std::size_t n, std::span<double> x, std::ptrdiff_t incx, std::span<double> y, std::ptrdiff_t incy);
/// x *= alpha
void sscal(std::size_t n, double alpha, std::span<double> x, std::ptrdiff_t incx);
/// Sum of |x_i|
double sasum(std::size_t n, std::span<const double> x, std::ptrdiff_t incx);
/// Index, from 0, of the first element of largest magnitude; 0 when there is none.
std::size_t isamax(std::size_t n, std::span<const double> x, std::ptrdiff_t incx);

}  // namespace corvantile
