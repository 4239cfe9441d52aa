#pragma once
// Numbers to text and back, padded text, and whole text files.
//
// Number layouts are named by their Fortran-style edit descriptors: fw.d fixed point, gw.d fixed or exponent form,
// iw integer, each right-aligned in w characters. A value that does not fit fills its field with `*`.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace corvantile {

/// fw.d: `v` with `digits` decimals, rounded from the exact value, right-aligned in `width` (0: the fewest
/// characters). The zero before the point gives way when the field has no room for it: `.5000000`, `-.0200000`.
/// Not finite: `NaN`, `Inf` or `-Inf`, written out as `Infinity` where a field has room.
std::string fixed_field(double v, std::size_t width, int digits);

/// The same, appended to `out` without a string of its own.
void append_fixed(std::string& out, double v, std::size_t width, int digits);

/// gw.d: `digits` significant digits in a field of `width` characters. From 0.1 to below 10^digits, and for 0, fixed
/// point followed by four blanks; else `0.1234E-05`, with the zero before the point only where there is room.
/// `width` is at least 5 and `digits` at least 1.
std::string general_field(double v, std::size_t width, int digits);

/// iw: an integer right-aligned in `width` (0: the fewest characters).
std::string integer_field(std::int64_t v, std::size_t width = 0);
void append_integer(std::string& out, std::int64_t v, std::size_t width = 0);

/// Free format: one blank, then the shortest digits that read back as the same double. Several of them make a line.
std::string free_format(double v);

/// What separates words, line ends among them.
constexpr bool is_white_space(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

/// Characters that the name of a file, or of a monitor called after it, keeps.
inline constexpr std::size_t longest_name = 256;

/// The first `length` bytes: what a text of that fixed length keeps of a longer one.
std::string_view cut(std::string_view s, std::size_t length);

/// Without trailing blanks.
std::string_view trim(std::string_view s);

/// `s` in single quotes for a message: cut to 40 characters, control characters shown as `?`.
std::string in_quotes(std::string_view s);

/// The real number that all of `s` spells: decimal digits with an optional sign, point and
/// exponent (`1e-3`, `1.0d-3`, `1.5+3`), or inf, infinity, nan in any case. Beyond the range of
/// a double: infinity or zero. Else nothing.
std::optional<double> parse_real(std::string_view s);

/// The integer that all of `s` spells. Nothing when it is none or has no place in 64 bits.
std::optional<std::int64_t> parse_integer(std::string_view s);

/// Without the UTF-8 byte order mark that some editors put before the first character of a file.
std::string_view without_byte_order_mark(std::string_view text);

/// `s` for a message, with control characters spelled out: a line end as `\n`, others as `\x1b`.
std::string printable(std::string_view s);

/// Everything that the file holds; nothing when it cannot be opened or read (a directory, for example).
/// Trailing blanks of the name are ignored. Throws `fault::content` for a file (or an endless device) of more than
/// `most` bytes.
std::optional<std::string> read_file(std::string_view name, std::size_t most = std::size_t{1} << 30U);

/// Reads numbers from text in free format: separated by blanks, tabs, line ends or one comma, with repeat counts
/// (`3*0.5`), up to the end of the text or a slash. A value left out (two commas in a row, `3*`) is bad: whoever
/// reads measurements needs each of them. Not-a-number and infinity are numbers here; the caller judges them. The
/// text must outlive the scanner. Nothing is allocated.
class number_scanner {
 public:
  enum class result { number, end, bad };

  /// `first_line` is the number of the text's first line, for a scanner over a part of a file.
  explicit number_scanner(std::string_view text, std::size_t first_line = 1)
      : text_(without_byte_order_mark(text)), line_(first_line), item_line_(first_line) {}

  /// The next number into `v`, which stays as it is when the result is another.
  result next(double& v);
  /// The next number, which must be written as an integer.
  result next(std::int64_t& v);

  /// The rest of the current line, without its end; nothing at the end of the text. Numbers start afresh after it.
  std::optional<std::string_view> next_line();

  /// Line of what `next` found last, or of the end of the text.
  std::size_t line() const { return item_line_; }

  /// For a bad item: "line 7: expected a number, found 'abc'". At the end: "line 9: expected a number, found the
  /// end".
  std::string problem(std::string_view expected = "a number") const;

 private:
  result take_item();
  template <class T>
  result take_number(T& v, std::optional<T> (*parse)(std::string_view));
  void skip_blanks();

  std::string_view text_;
  std::size_t pos_ = 0;
  std::size_t line_;         // of pos_
  bool after_item_ = false;  // one comma may still belong to the last item
  std::string_view item_;    // as written, for messages
  std::string_view value_;   // the item without its repeat count
  std::size_t item_line_;
  std::uint64_t repeats_ = 0;  // how often value_ is still to be given
};

}  // namespace corvantile
