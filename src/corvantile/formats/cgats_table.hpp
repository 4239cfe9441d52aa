#pragma once
// The structure of a CGATS text (ANSI CGATS.17, ISO 28178, and what programs make of it): tables of named columns.
// The readers of each kind know what the names mean.

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "corvantile/formats/text_lines.hpp"

namespace corvantile {

struct cgats_keyword {
  std::string_view key;
  std::string_view value;  ///< without its quotes
  std::size_t line = 0;
};

/// One table. Its views point into the text that was read.
struct cgats_table {
  std::string_view identifier;  ///< "CTI3", "CAL", "CGATS.17"; empty if the text begins with a keyword
  std::size_t line = 0;         ///< where the table begins
  std::vector<cgats_keyword> keywords;
  std::vector<std::string_view> remarks;  ///< other blocks from BEGIN_x to END_x
  std::vector<std::string_view> fields;   ///< names of the columns
  std::string_view data;                  ///< the lines from BEGIN_DATA to END_DATA
  std::size_t data_line = 0;              ///< number of the first of them
};

/// All tables of the text, without comments (`#`). Throws `fault::content`, naming the line, if the text is not CGATS
/// or ends before END_DATA: it was cut short.
std::vector<cgats_table> parse_cgats(std::string_view name, std::string_view text);

/// The first keyword of that name, in any case; null if there is none.
const cgats_keyword* find_keyword(const cgats_table& table, std::string_view key);
/// Its value; empty if there is none.
std::string_view keyword_value(const cgats_table& table, std::string_view key);

/// Position of the first field of that name, in any case; nothing if there is none.
std::optional<std::size_t> find_field(const cgats_table& table, std::string_view name);

/// The numbers in chosen columns of a table, row by row; a row is one line.
class cgats_rows {
 public:
  /// `columns` are positions of fields, each at most once.
  cgats_rows(std::string_view name, const cgats_table& table, std::span<const std::size_t> columns);

  /// Goes on to the next row; false after the last. Throws `fault::content` with line and value if a row does not
  /// have one cell per field, or a chosen cell is not a number.
  bool next();

  /// Of the current row, in the order of `columns`.
  std::span<const double> values() const { return values_; }
  std::size_t line() const { return lines_.number(); }

 private:
  std::string_view name_;
  const cgats_table& table_;
  line_reader lines_;
  std::vector<std::size_t> slot_;  // per field: index in `values_`; `values_.size()` if not wanted
  std::vector<double> values_;
};

}  // namespace corvantile
