#pragma once
// Search and statistics on arrays. Indices in results count from 1; 0 means none.

#include <cstddef>
#include <span>
#include <vector>

#include "corvantile/numerics/matrix.hpp"

namespace corvantile {

/// The largest value that is not NaN; NaN if there is none.
double largest(std::span<const double> v);

// ---- Held ready: no job calls these ----

/// Indices of the true elements, ascending.
std::vector<int> find_vec(const std::vector<bool>& mask);

/// Column-major linear indices of the non-zero elements, ascending.
std::vector<int> find_mat(const int_matrix& mask);

/// The first index from which `nconsec` (at least 1) consecutive samples all lie strictly above `level`; 0 if there
/// is none. NaN cannot begin such a run but does not end one.
int risingedgetrigger(std::span<const double> v, double level, int nconsec = 10);

/// The same for samples strictly below `level`.
int fallingedgetrigger(std::span<const double> v, double level, int nconsec = 10);

/// Arithmetic mean; 0 if `v` is empty.
double mean(std::span<const double> v);

/// Sample standard deviation, in two passes; 0 if `v` is empty. A single sample deliberately gives the sample itself.
double std(std::span<const double> v);

/// The columns of a matrix, one after the other.
std::vector<double> colstack(const matrix& a);

/// The inverse of colstack: `v` cut into columns of length k, at least 1. If k does not divide the length n, all
/// zeros: k rows by n / k columns.
matrix colunstack(std::span<const double> v, std::size_t k);

}  // namespace corvantile
