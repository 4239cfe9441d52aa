#pragma once
// Tables that lie in a folder, whoever put them there.

#include <string>

#include "monitor/monitor.hpp"

namespace corvantile::kit {

/// The tables of a folder as a chain in front of the display: `preLUT.txt`, `matrix.txt` and `postLUT.txt` where the
/// first two are both there, else `postLUT.txt` alone; for the folder of a job, what its record lists. Throws
/// `fault::content`, naming file and line, for a table that is missing, has not three columns, or holds integers of
/// an unknown number of bits.
front_end front_end_on_disk(const std::string& folder);

}  // namespace corvantile::kit
