#pragma once
// What a device applies to its drive values, in every mode.

#include <cstddef>

#include "corvantile/job/correction.hpp"
#include "corvantile/numerics/matrix.hpp"

namespace corvantile {

/// The tables of one correction: out_c = post_c(sum_k mix(c, k) pre_k(in_k)). Each table is sampled evenly on 0..1,
/// interpolated linearly, and keeps its end values beyond. A CV1 job has only `post`.
struct device_tables {
  bool two_tables = false;
  matrix pre;                                           ///< n x 3; empty unless `two_tables`
  mat3 mix{{{{{1, 0, 0}}, {{0, 1, 0}}, {{0, 0, 1}}}}};  ///< the identity unless `two_tables`
  matrix post;                                          ///< n x 3
  bool clips = false;  ///< `two_tables`: colours out of reach are left to the end values of `post`, on purpose
};

/// The tables of a solved job. The row that is NaN (`correction::undefined_row`) becomes the row before it.
device_tables tables_of(const correction& result);

/// The drive values that a device sends to the display for `drive`.
vec3 corrected(const device_tables& tables, const vec3& drive);

/// The same tables as a front end of the model. Unlike a device, it extrapolates beyond the ends of its tables,
/// unless they clip.
front_end front_end_of(const device_tables& tables);

/// The n x 3 table with `entries` rows (both at least 2), by linear interpolation. New rows that fall on old ones
/// have the same bits.
matrix resample(const matrix& table, std::size_t entries);

}  // namespace corvantile
