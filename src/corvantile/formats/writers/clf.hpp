#pragma once
// Common LUT Format 3 (Academy/ASC), one file: exact for every correction.

#include <string>

#include "corvantile/formats/writers/writer.hpp"

namespace corvantile {

/// LUT1D, Matrix, LUT1D; for a gray-axis job one LUT1D. 32f throughout, nine digits. Tables of 2 to 65536 rows.
std::string clf_file(const device_tables& tables, const description& about);

}  // namespace corvantile
