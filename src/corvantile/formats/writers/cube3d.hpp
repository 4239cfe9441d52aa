#pragma once
// The three-dimensional .cube file (IRIDAS, Adobe): the whole correction baked into a grid, and so approximate
// between its points.

#include <cstddef>
#include <functional>
#include <string>

#include "corvantile/formats/writers/writer.hpp"

namespace corvantile {

/// Drive values in 0..1 to corrected drive values.
using drive_map = std::function<vec3(const vec3&)>;

/// `size`^3 points, red running fastest; `size` from 2 to 256 (17, 33 and 65 are usual, above 129 few readers
/// follow). Baked from the model's own curves, ...
std::string cube3d_file(const drive_map& corrected, std::size_t size, const description& about);
/// ... or from tables of at least 4096 rows.
std::string cube3d_file(const device_tables& tables, std::size_t size, const description& about);

}  // namespace corvantile
