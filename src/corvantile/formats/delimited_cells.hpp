#pragma once
// Cells of one line of a CSV, TSV or blank-separated table.

#include <cstddef>
#include <string_view>
#include <vector>

namespace corvantile {

/// Tables of readings are narrower (with spectra some 400 columns).
inline constexpr std::size_t most_cells = 4096;

/// The separator that a line shows: `;`, tab, comma or blank, tried in this order. If blanks already separate six
/// numbers, a comma is a decimal mark.
char separator_of(std::string_view line);

/// Puts the cells of `line` into `cells`, without margins and quotes; empty ones at the end are left out. Any number
/// of blanks is one separator; each `;`, tab or comma is one. A line of too many cells gives `most_cells + 1`, the
/// last with the rest of the line.
void split_cells(std::string_view line, char separator, std::vector<std::string_view>& cells);

}  // namespace corvantile
