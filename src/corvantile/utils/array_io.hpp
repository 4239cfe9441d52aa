#pragma once
// Arrays as text: matrices in columns fitted to their data, one real vector per file, memory-initialisation files.
//
// Routines that write a file replace it and throw `fault::unwritable` (file name and the system's reason) when
// that fails.

#include <iosfwd>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "corvantile/numerics/matrix.hpp"
#include "corvantile/numerics/ppoly.hpp"

namespace corvantile {

/// The matrix with 12 decimals, one line per row, after a line with the title if there is one. Each entry is preceded
/// by three blanks and right-aligned in a field as wide as the largest entry needs, or the smallest when that is
/// negative and longer; not-a-number entries do not count. Without a negative entry and with all below 1 the field
/// has no room for the zero before the point. A negative zero is not below zero: it does not widen the field, and
/// where its sign finds no room it shows as stars.
std::string prtmat_real(const matrix& a, std::optional<std::string_view> title = {});
std::string prtmat_real(const mat3& a, std::optional<std::string_view> title = {});

/// The integer matrix, laid out in the same way.
std::string prtmat_int(const int_matrix& a, std::optional<std::string_view> title = {});

// ---- Held ready: no job calls these ----

/// `prtmat_real` and `prtmat_int` onto `unit`.
void prtmat_real(std::ostream& unit, const matrix& a, std::optional<std::string_view> title = {});
void prtmat_real(std::ostream& unit, const mat3& a, std::optional<std::string_view> title = {});
void prtmat_int(std::ostream& unit, const int_matrix& a, std::optional<std::string_view> title = {});

/// Lists a piecewise polynomial onto `unit`: the title if there is one, the number of knots and the knots, the number
/// of pieces and, piece by piece, the coefficients from the constant term up. One value per line, in free format.
void ppdump(std::ostream& unit, const ppoly& pp, std::optional<std::string_view> title = {});

/// Writes one number per line, in free format.
void savearray(const std::string& filename, std::span<const double> v);

/// Replaces `v` by the numbers of a file in free format: as many as it has lines that begin with a number, up to the
/// first that does not. False, with `v` empty, when the file cannot be opened or holds no number there, or when other
/// text stands among the numbers.
bool loadarray(const std::string& filename, std::vector<double>& v);

/// Writes the low 10 bits of an r x c table as a memory-initialisation file in hexadecimal: (r - 1)(c - 1) words of
/// 40 bits, row by row, each the corners (i, j), (i, j + 1), (i + 1, j), (i + 1, j + 1) of a cell, the first in the
/// most significant bits.
void dumpxram(const int_matrix& a, const std::string& filename);

}  // namespace corvantile
