#pragma once
// The one-dimensional .cube file (IRIDAS, Adobe): exact for gray-axis jobs.

#include <string>

#include "corvantile/formats/writers/writer.hpp"

namespace corvantile {

/// One table of 2 to 65536 rows over 0..1. Refuses a two-table correction.
std::string cube_file(const device_tables& tables, const description& about);

}  // namespace corvantile
