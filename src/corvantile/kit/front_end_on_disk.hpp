#pragma once
// The tables of a folder as the model takes them.

#include <string>

#include "corvantile/monitor/monitor.hpp"

namespace corvantile::kit {

/// The tables of a folder as a chain in front of the display: what `read_tables` finds there, or for the folder of a
/// job what its record lists. Throws as that and `open_job` do.
front_end front_end_on_disk(const std::string& folder);

}  // namespace corvantile::kit
