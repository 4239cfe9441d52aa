#pragma once
// Numbers to text and back, and padded text.
//
// Number layouts have the names of Fortran's edit descriptors: fw.d fixed point, gw.d fixed or exponent form, iw
// integer, each right-aligned in w characters. A value that does not fit fills its field with `*`.

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace corvantile {

/// fw.d: `v` with `digits` decimals, rounded from the exact value, right-aligned in `width` (0: the fewest
/// characters). If the field has no room for the zero before the point, the zero goes: `.5000000`, `-.0200000`. Not
/// finite: `NaN`, `Inf` or `-Inf`; `Infinity` if the field has room.
std::string fixed_field(double v, std::size_t width, int digits);

/// Appends the same to `out`, without a temporary string.
void append_fixed(std::string& out, double v, std::size_t width, int digits);

/// gw.d: `digits` significant digits in a field of `width` characters. Zero, and magnitudes from 0.1 to below
/// 10^digits, are in fixed point followed by four blanks. Others read `0.1234E-05`, with the zero before the point
/// only if there is room. `width` is at least 5 and `digits` at least 1.
std::string general_field(double v, std::size_t width, int digits);

/// iw: an integer right-aligned in `width` (0: the fewest characters).
std::string integer_field(std::int64_t v, std::size_t width = 0);
void append_integer(std::string& out, std::int64_t v, std::size_t width = 0);

/// Free format: one blank, then the shortest digits that read back as the same double. Several in a row make a line.
std::string free_format(double v);

/// Whether `c` is a blank, a tab or part of a line end.
constexpr bool is_white_space(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

/// How many characters are kept of a file's name, and of the name that a monitor takes from it.
inline constexpr std::size_t longest_name = 256;

/// The first `length` bytes, as a text of that fixed length would keep them.
std::string_view cut(std::string_view s, std::size_t length);

/// `s` without trailing blanks.
std::string_view trim(std::string_view s);

/// `s` in single quotes for a message: cut to 40 characters, control characters shown as `?`.
std::string in_quotes(std::string_view s);

/// The real number that `s` as a whole spells: decimal digits with an optional sign, point and exponent (`1e-3`,
/// `1.0d-3`, `1.5+3`), or inf, infinity, nan in any case. Beyond the range of a double the result is infinity or
/// zero. Otherwise std::nullopt.
std::optional<double> parse_real(std::string_view s);

/// The integer that `s` as a whole spells; std::nullopt if it is not an integer or does not fit in 64 bits.
std::optional<std::int64_t> parse_integer(std::string_view s);

/// `text` without the UTF-8 byte order mark that some editors put at the start of a file.
std::string_view without_byte_order_mark(std::string_view text);

/// `s` for a message, with control characters spelled out: a line end as `\n`, others as `\x1b`.
std::string printable(std::string_view s);

// ---- Numbers in sentences ----

/// Four significant digits: "0.3127", "1500", "1.2e-05".
std::string short_number(double v);

/// A ratio in percent with three significant digits: "12.3 %".
std::string short_percent(double ratio);

/// "0.3127, 0.329".
std::string short_pair(double a, double b);

/// Rows `first` to `last`: "row 7" or "rows 7 to 9".
std::string row_range(std::size_t first, std::size_t last);

inline constexpr std::array channel_names{"red", "green", "blue"};

/// The fewest digits that read back as the same double.
std::string shortest(double v);

}  // namespace corvantile
