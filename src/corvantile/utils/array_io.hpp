#pragma once
// Arrays as text: matrices in columns as wide as their data need, one real vector per file, memory-initialisation
// files.
//
// Routines that write a file replace it. If that fails they throw `fault::unwritable` with the file's name and the
// system's reason.

#include <iosfwd>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "corvantile/numerics/matrix.hpp"
#include "corvantile/numerics/ppoly.hpp"

namespace corvantile {

/// The matrix with 12 decimals, one line per row, after a line with the title if there is one. Three blanks precede
/// each entry, right-aligned in a field as wide as the largest entry needs, or the smallest if that is negative and
/// longer; NaN does not count. If no entry is negative and all are below 1, the field has no room for the zero before
/// the point. Negative zero does not widen the field; if its sign does not fit, it prints as stars.
std::string prtmat_real(const matrix& a, std::optional<std::string_view> title = {});
std::string prtmat_real(const mat3& a, std::optional<std::string_view> title = {});

/// The integer matrix, in the same layout.
std::string prtmat_int(const int_matrix& a, std::optional<std::string_view> title = {});

// ---- Held ready: no job calls these ----

/// Write `prtmat_real` and `prtmat_int` to `unit`.
void prtmat_real(std::ostream& unit, const matrix& a, std::optional<std::string_view> title = {});
void prtmat_real(std::ostream& unit, const mat3& a, std::optional<std::string_view> title = {});
void prtmat_int(std::ostream& unit, const int_matrix& a, std::optional<std::string_view> title = {});

/// Lists a piecewise polynomial on `unit`: the title if there is one, the number of knots, the knots, the number of
/// pieces and, piece by piece, the coefficients from the constant term up. One value per line, in free format.
void ppdump(std::ostream& unit, const ppoly& pp, std::optional<std::string_view> title = {});

/// Writes one number per line, in free format.
void savearray(const std::string& filename, std::span<const double> v);

/// Replaces `v` by numbers from a file in free format. It reads as many as there are lines that begin with a number,
/// up to the first line that does not. Returns false, with `v` empty, if the file cannot be opened, does not start
/// with a number, or has other text among the numbers.
bool loadarray(const std::string& filename, std::vector<double>& v);

/// Writes the low 10 bits of an r x c table as a memory-initialisation file in hexadecimal: (r - 1)(c - 1) words of
/// 40 bits, row by row. Each word holds the corners (i, j), (i, j + 1), (i + 1, j), (i + 1, j + 1) of a cell, the
/// first in the most significant bits.
void dumpxram(const int_matrix& a, const std::string& filename);

}  // namespace corvantile
