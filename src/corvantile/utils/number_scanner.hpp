#pragma once
// Reads numbers from text in free format.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "corvantile/utils/text.hpp"

namespace corvantile {

/// Reads numbers from text in free format: separated by blanks, tabs, line ends or one comma, with repeat counts
/// (`3*0.5`), up to the end of the text or a slash. An omitted value (two commas in a row, `3*`) is bad, because
/// readers of measurements need every value. NaN and infinity count as numbers; the caller judges them. The text must
/// outlive the scanner. Allocates nothing.
class number_scanner {
 public:
  enum class result { number, end, bad };

  /// `first_line` is the line number of the text's first line, for a scanner over part of a file.
  explicit number_scanner(std::string_view text, std::size_t first_line = 1)
      : text_(without_byte_order_mark(text)), line_(first_line), item_line_(first_line) {}

  /// Reads the next number into `v`. If the result is not `number`, `v` stays as it is.
  result next(double& v);
  /// The same for a number that must be written as an integer.
  result next(std::int64_t& v);

  /// The rest of the current line, without its end; std::nullopt at the end of the text. After it, numbers start
  /// afresh.
  std::optional<std::string_view> next_line();

  /// The line of what `next` found last, or of the end of the text.
  std::size_t line() const { return item_line_; }

  /// Describes a bad item: "line 7: expected a number, found 'abc'", or the end: "line 9: expected a number, found
  /// the end".
  std::string problem(std::string_view expected = "a number") const;

 private:
  result take_item();
  template <class T>
  result take_number(T& v, std::optional<T> (*parse)(std::string_view));
  void skip_blanks();

  std::string_view text_;
  std::size_t pos_ = 0;
  std::size_t line_;         // at pos_
  bool after_item_ = false;  // one comma may still follow the last item
  std::string_view item_;    // as written, for messages
  std::string_view value_;   // the item without its repeat count
  std::size_t item_line_;
  std::uint64_t repeats_ = 0;  // how many times value_ is still due
};

}  // namespace corvantile
