#pragma once
// Prints the decimals of doubles, fast enough for tables of thousands of rows.

namespace corvantile {

/// Writes finite `v` with `digits` decimals, rounded from the exact value, half to even, and returns the end of the
/// text. Byte for byte the text of std::to_chars with chars_format::fixed, but several times faster if |v| is below
/// 2^64 / 10^digits and `digits` is at most 18. The buffer must have room: 1500 characters are enough for any number
/// with up to 1074 decimals.
char* write_fixed(char* begin, char* end, double v, int digits);

}  // namespace corvantile
