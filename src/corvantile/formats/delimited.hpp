#pragma once
// Readings in plain tables: CSV, TSV, and columns separated by blanks.

#include <string_view>

#include "corvantile/readings/readings.hpp"

namespace corvantile {

/// The readings of a table.
/// - With a header: columns named R, G, B (or Red, Green, Blue) and X, Y, Z or x, y, Y, in any order; other columns
///   are skipped. Case counts only to tell Y from y. A unit may follow in brackets: `Y (cd/m2)` makes the readings
///   absolute, `R [%]` gives the drive's scale.
/// - Without one: 6 columns R, G, B, X, Y, Z; or 12, X, Y, Z of four ramps at even levels, from dark to full drive or
///   back. `layout` is the ramps' order, such as "rgbw"; if it is empty, their colours tell.
///
/// Cells are separated by `;`, tabs, commas or blanks, as the first line shows, and may be in quotes. A comma that
/// does not separate is a decimal mark. Lines that begin with `#`, `//` or `; ` are comments. A row without X, Y, Z
/// was not measured. Throws `fault::content` with line and value for anything else.
readings read_delimited(std::string_view name, std::string_view text, std::string_view layout = {});

/// Whether a layout has the letters w, r, g and b, each once.
bool is_layout(std::string_view layout);

}  // namespace corvantile
