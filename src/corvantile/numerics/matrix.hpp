#pragma once
// Small fixed-size vectors and matrices, and a column-major matrix whose size is set at run time.
//
// Products are summed from the first term to the last, so results do not depend on how a compiler schedules them.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace corvantile {

/// Two coordinates in a plane, usually a chromaticity.
struct vec2 {
  std::array<double, 2> v{};
  constexpr double& operator[](std::size_t i) { return v[i]; }
  constexpr double operator[](std::size_t i) const { return v[i]; }
  friend bool operator==(const vec2&, const vec2&) = default;
};

/// Three channels (red, green, blue) or three tristimulus values (X, Y, Z).
struct vec3 {
  std::array<double, 3> v{};
  constexpr double& operator[](std::size_t i) { return v[i]; }
  constexpr double operator[](std::size_t i) const { return v[i]; }
  friend bool operator==(const vec3&, const vec3&) = default;
};

constexpr vec2 operator+(const vec2& a, const vec2& b) { return {{a[0] + b[0], a[1] + b[1]}}; }
constexpr vec2 operator-(const vec2& a, const vec2& b) { return {{a[0] - b[0], a[1] - b[1]}}; }
constexpr vec2 operator*(double r, const vec2& a) { return {{r * a[0], r * a[1]}}; }
constexpr vec2 operator/(const vec2& a, double r) { return {{a[0] / r, a[1] / r}}; }

constexpr vec3 operator+(const vec3& a, const vec3& b) { return {{a[0] + b[0], a[1] + b[1], a[2] + b[2]}}; }
constexpr vec3 operator-(const vec3& a, const vec3& b) { return {{a[0] - b[0], a[1] - b[1], a[2] - b[2]}}; }
constexpr vec3 operator*(double r, const vec3& a) { return {{r * a[0], r * a[1], r * a[2]}}; }
constexpr vec3 operator/(const vec3& a, double r) { return {{a[0] / r, a[1] / r, a[2] / r}}; }
constexpr vec3 elementwise_product(const vec3& a, const vec3& b) { return {{a[0] * b[0], a[1] * b[1], a[2] * b[2]}}; }
constexpr vec3 elementwise_quotient(const vec3& a, const vec3& b) {
  return {{a[0] / b[0], a[1] / b[1], a[2] / b[2]}};
}

constexpr double dot(const vec2& a, const vec2& b) { return a[0] * b[0] + a[1] * b[1]; }
inline double length(const vec2& a) { return std::sqrt(dot(a, a)); }

/// Squared Euclidean distance.
constexpr double dist2(const vec3& a, const vec3& b) {
  const vec3 d = a - b;
  return d[0] * d[0] + d[1] * d[1] + d[2] * d[2];
}

/// A 3 x 3 matrix that multiplies column vectors. `col[c]` is column c: in a primaries matrix, X, Y, Z of primary c.
struct mat3 {
  std::array<vec3, 3> col{};
  constexpr double& operator()(std::size_t i, std::size_t j) { return col[j][i]; }
  constexpr double operator()(std::size_t i, std::size_t j) const { return col[j][i]; }
  friend bool operator==(const mat3&, const mat3&) = default;
};

constexpr vec3 operator*(const mat3& m, const vec3& x) {
  vec3 r;
  for (std::size_t i = 0; i < 3; ++i) r[i] = m(i, 0) * x[0] + m(i, 1) * x[1] + m(i, 2) * x[2];
  return r;
}
constexpr mat3 operator*(const mat3& a, const mat3& b) { return {{a * b.col[0], a * b.col[1], a * b.col[2]}}; }
constexpr mat3 operator*(const mat3& m, double r) { return {{r * m.col[0], r * m.col[1], r * m.col[2]}}; }
constexpr mat3 operator/(const mat3& m, double r) { return {{m.col[0] / r, m.col[1] / r, m.col[2] / r}}; }

/// Expanded along the first row.
constexpr double determinant(const mat3& m) {
  const auto& [a, b, c] = m.col;
  return a[0] * (b[1] * c[2] - b[2] * c[1]) - b[0] * (a[1] * c[2] - a[2] * c[1]) + c[0] * (a[1] * b[2] - a[2] * b[1]);
}

/// An r x c matrix in column-major order: element (i, j) is `data()[i + j * rows()]`, counted from 0.
/// A batch of samples has one sample per row.
template <class T>
class dense {
 public:
  dense() = default;
  dense(std::size_t r, std::size_t c) : rows_(r), cols_(c), data_(r * c) {}

  std::size_t rows() const { return rows_; }
  std::size_t cols() const { return cols_; }
  T& operator()(std::size_t i, std::size_t j) { return data_[i + j * rows_]; }
  const T& operator()(std::size_t i, std::size_t j) const { return data_[i + j * rows_]; }
  std::span<T> col(std::size_t j) { return {data_.data() + j * rows_, rows_}; }
  std::span<const T> col(std::size_t j) const { return {data_.data() + j * rows_, rows_}; }
  std::span<T> data() { return data_; }
  std::span<const T> data() const { return data_; }
  friend bool operator==(const dense&, const dense&) = default;

 private:
  std::size_t rows_ = 0;
  std::size_t cols_ = 0;
  std::vector<T> data_;
};

using matrix = dense<double>;
using int_matrix = dense<std::int64_t>;

/// Copies a 3 x 3 matrix into one of run-time size.
inline matrix to_matrix(const mat3& m) {
  matrix r(3, 3);
  for (std::size_t j = 0; j < 3; ++j) std::ranges::copy(m.col[j].v, r.col(j).begin());
  return r;
}

/// The n x 3 batch with the n values of `column` in every channel.
inline matrix in_all_channels(std::span<const double> column) {
  matrix m(column.size(), 3);
  for (std::size_t c = 0; c < 3; ++c) std::ranges::copy(column, m.col(c).begin());
  return m;
}

/// Row i of an n x 3 batch.
inline vec3 row3(const matrix& m, std::size_t i) { return {{m(i, 0), m(i, 1), m(i, 2)}}; }
inline void set_row3(matrix& m, std::size_t i, const vec3& v) {
  for (std::size_t c = 0; c < 3; ++c) m(i, c) = v[c];
}

/// Applies a transform of one triple to one triple, or to each row of an n x 3 batch. Both give the same bits.
template <class Kernel>
vec3 apply(const Kernel& kernel, const vec3& x) {
  return kernel(x);
}
template <class Kernel>
matrix apply(const Kernel& kernel, const matrix& x) {
  matrix y(x.rows(), 3);
  for (std::size_t i = 0; i < x.rows(); ++i) set_row3(y, i, kernel(row3(x, i)));
  return y;
}

}  // namespace corvantile
