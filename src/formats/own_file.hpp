#pragma once
// The program's own measurement files, as readings.

#include <optional>
#include <string_view>

#include "readings/readings.hpp"

namespace corvantile {

/// Whether the text begins as such a file: comments, then a line of three integers of which the last is a version.
bool is_own_file(std::string_view text);

/// Every sample of the file, in its order; drives over the largest of them all. Comment lines of the form
/// `; Instrument: ...`, `; Software: ...`, `; Date: ...`, `; Display: ...` fill the fields of these names, and
/// `; Unit: cd/m2` makes the readings absolute.
/// Throws as `parse_measurements` does, and `fault::content` for samples that are not finite or lie outside the
/// scale.
readings read_own_file(std::string_view name, std::string_view text);

}  // namespace corvantile
