#pragma once
// What a device applies to its drive values, however it was solved.

#include <cstddef>

#include "corvantile/job/correction.hpp"
#include "corvantile/numerics/matrix.hpp"

namespace corvantile {

/// The tables of one correction: out_c = post_c(sum_k mix(c, k) pre_k(in_k)), each table sampled evenly on 0..1,
/// interpolated linearly, and holding its end values beyond. A gray-axis job has `post` only.
struct device_tables {
  bool two_tables = false;
  matrix pre;                                           ///< n x 3; empty unless `two_tables`
  mat3 mix{{{{{1, 0, 0}}, {{0, 1, 0}}, {{0, 0, 1}}}}};  ///< the identity unless `two_tables`
  matrix post;                                          ///< n x 3
};

/// The tables of a solved job. A row that is not a number (`correction::undefined_row`) becomes the row before it.
device_tables tables_of(const correction& result);

/// The drive values that a device sends to the display for `drive`.
vec3 corrected(const device_tables& tables, const vec3& drive);

/// The same tables as the model takes them: a chain in front of the display. Unlike a device it continues beyond the
/// ends of its tables.
front_end front_end_of(const device_tables& tables);

/// The n x 3 table with another number of rows (at least 2, as in `table`), by linear interpolation. A new row that
/// falls on an old one has the same bits.
matrix resample(const matrix& table, std::size_t entries);

}  // namespace corvantile
