#pragma once
// What the writers share: what a file says about itself, how it treats a calibration, and common refusals.
//
// A writer takes plain records and returns bytes; it opens no file. It refuses what its format cannot hold by a
// `failure` of kind `fault::inexpressible`, whose message names the format, the reason and the way out, and entries
// that are not finite by `fault::not_finite`.

#include <array>
#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "corvantile/job/device_tables.hpp"
#include "corvantile/numerics/matrix.hpp"
#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/lut.hpp"

namespace corvantile {

/// What a file says about itself. Every writer passes the texts through `ascii` and escapes them as its format asks.
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

/// cal(table(x)), entry by entry: for formats that replace the calibration in effect while the display was measured.
/// Resample first, then compose.
matrix compose_calibration(const std::array<lut, 3>& cal, matrix table);

/// How a file's entries relate to a calibration that was in effect while the display was measured.
enum class calibration_use {
  none,      ///< there was none, it was the identity, or it is to be ignored
  composed,  ///< the entries are cal(table(x))
  in_force   ///< the entries are the table alone
};

/// The sentence that says so, for the comments of a description.
std::string calibration_note(calibration_use use);

// ---- Refusals ----

/// A format that cannot hold a correction: `fault::inexpressible`, with the message "Format NAME: WHY".
struct format_refusal : failure {
  format_refusal(std::string_view format, std::string_view why_);
  std::string why;
};

/// Throws a `format_refusal`.
[[noreturn]] void refuse_format(std::string_view format, std::string_view why);

/// Throws `fault::not_finite`: "Format NAME: WHAT is not a finite number".
[[noreturn]] void refuse_not_finite(std::string_view format, std::string_view what);

/// Refuses tables with fewer than two rows or without three columns, and entries that are not finite.
void require_tables(std::string_view format, const device_tables& tables);

/// As `require_tables`; also refuses a two-table correction. Returns the one table.
const matrix& require_one_table(std::string_view format, const device_tables& tables);

/// Refuses a count that is not from `least` to `most`; the message calls it `what`.
void require_count(std::string_view format, std::string_view what, std::size_t count, std::size_t least,
                   std::size_t most);

/// As `require_tables`; also refuses tables of fewer than 4096 rows, which are too coarse in the dark to be baked
/// into a three-dimensional table.
void require_bakeable(std::string_view format, const device_tables& tables);

}  // namespace corvantile
