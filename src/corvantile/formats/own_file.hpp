#pragma once
// The program's own measurement files, as readings.

#include <string_view>

#include "corvantile/readings/readings.hpp"

namespace corvantile {

/// Every sample of the file that is a reading (derived ramps are not), in its order; drives as fractions of the
/// largest. Everything else comes from the comment lines. Throws as `parse_measurement_file` does, and
/// `fault::content` for samples that are not finite or outside the scale.
readings read_own_file(std::string_view name, std::string_view text);

}  // namespace corvantile
