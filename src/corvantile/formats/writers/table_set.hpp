#pragma once
// What every writer starts from: the tables of a correction, what a file says about itself, and the refusals that
// several formats share.
//
// A writer takes plain records and returns bytes; it opens no file. What a format cannot hold is refused by a
// `failure` of kind `fault::inexpressible`, whose message names the format, the reason and the way out; tables with
// entries that are not finite by `fault::not_finite`.

#include <array>
#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "corvantile/numerics/matrix.hpp"
#include "corvantile/utils/lut.hpp"

namespace corvantile {

/// The tables of one correction as a device applies them: out_c = post_c(sum_k mix(c, k) pre_k(in_k)), each table
/// sampled evenly on 0..1, interpolated linearly, and holding its end values beyond. A gray-axis job has `post` only.
struct table_set {
  bool two_tables = false;
  matrix pre;                                           ///< n x 3; empty unless `two_tables`
  mat3 mix{{{{{1, 0, 0}}, {{0, 1, 0}}, {{0, 0, 1}}}}};  ///< the identity unless `two_tables`
  matrix post;                                          ///< n x 3
};

/// What a file says about itself. Every writer takes the texts through `ascii` and escapes them as its format asks.
struct description {
  std::string title;
  std::vector<std::string> comments;      ///< one line each
  std::chrono::sys_seconds created = {};  ///< for formats that hold a date
};

/// One of the files that make up a format.
struct file_content {
  std::string name;  ///< without a folder
  std::string bytes;
};

/// The drive values that a device sends to the display for `drive`.
vec3 corrected(const table_set& tables, const vec3& drive);

/// The n x 3 table with another number of rows (at least 2, as in `table`), by linear interpolation. Where a new row
/// falls on an old one it has the same bits.
matrix resample(const matrix& table, std::size_t entries);

/// cal(table(x)), entry by entry: for formats that replace the calibration through which the display was measured.
/// Resample first, compose then.
matrix compose_calibration(const std::array<lut, 3>& cal, matrix table);

/// How a file's entries stand to a calibration that was in effect while the display was measured.
enum class calibration_use {
  none,      ///< there was none, it was the identity, or it is to be left out of account
  composed,  ///< the entries are cal(table(x))
  in_force   ///< the entries are the table alone
};

/// The sentence that says so, for the comments of a description.
std::string calibration_note(calibration_use use);

// ---- Refusals ----

/// Throws `fault::inexpressible`: "Format NAME: WHY".
[[noreturn]] void refuse_format(std::string_view format, std::string_view why);

/// Refuses tables of fewer than two rows or not of three columns, and entries that are not finite.
void require_tables(std::string_view format, const table_set& tables);

/// As `require_tables`, and refuses a two-table correction; returns the one table.
const matrix& require_one_table(std::string_view format, const table_set& tables);

/// Refuses a count, named in the message as `what`, that is not from `least` to `most`.
void require_count(std::string_view format, std::string_view what, std::size_t count, std::size_t least,
                   std::size_t most);

/// As `require_tables`, and refuses to bake a three-dimensional table from tables of fewer than 4096 rows: between
/// the rows of short ones the dark end is too coarse.
void require_bakeable(std::string_view format, const table_set& tables);

}  // namespace corvantile
