#pragma once
// The program's own measurement files, as readings.

#include <string_view>

#include "corvantile/readings/readings.hpp"

namespace corvantile {

/// Every sample of the file that was read, in its order, so that ramps that were derived are left out; drives over
/// the largest of them all. What else is known comes from the comment lines, as `parse_measurement_file` reads them.
/// Throws as that does, and `fault::content` for samples that are not finite or lie outside the scale.
readings read_own_file(std::string_view name, std::string_view text);

}  // namespace corvantile
