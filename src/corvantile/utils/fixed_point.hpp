#pragma once
// Decimals of doubles, for tables of thousands of rows.

namespace corvantile {

/// Writes finite `v` with `digits` decimals, rounded from the exact value, half to even, and returns the end of what
/// was written: byte for byte what std::to_chars writes with chars_format::fixed, several times faster for numbers
/// below 2^64 / 10^digits, `digits` being 18 at most. The buffer must have room: 1500 characters are enough for any
/// number and any 1074 decimals.
char* write_fixed(char* begin, char* end, double v, int digits);

}  // namespace corvantile
