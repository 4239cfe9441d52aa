#pragma once
// Cells of one line of a CSV, TSV or blank-separated table.

#include <cstddef>
#include <string_view>
#include <vector>

namespace corvantile {

/// No table that holds readings is wider (spectra have some 400 columns).
inline constexpr std::size_t most_cells = 4096;

/// The separator that a line shows: `;`, tab, comma or blank, in this order. A comma is a decimal mark where blanks
/// alone already separate six numbers.
char separator_of(std::string_view line);

/// The cells of `line` into `cells`, without margins and quotes; empty ones at the end are left out. Blanks separate
/// in any number, other separators each make a cell. More than `most_cells` are not taken apart: the last then holds
/// the rest of the line, and there are `most_cells + 1`.
void split_cells(std::string_view line, char separator, std::vector<std::string_view>& cells);

}  // namespace corvantile
