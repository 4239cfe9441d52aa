#pragma once
// The whole correction baked into a three-dimensional grid: exact at its points, approximate between them. The files
// .cube (IRIDAS, Adobe) and .3dl (Lustre, Flame).

#include <cstddef>
#include <functional>
#include <string>

#include "corvantile/formats/writers/writer.hpp"

namespace corvantile {

/// Drive values in 0..1 to corrected drive values.
using drive_map = std::function<vec3(const vec3&)>;

/// A .cube of `size`^3 points, red running fastest; `size` from 2 to 256 (17, 33 and 65 are usual, few readers take
/// more than 129). From a function, such as the model's own curves, ...
std::string cube3d_file(const drive_map& map, std::size_t size, const description& about);
/// ... or from tables of at least 4096 rows.
std::string cube3d_file(const device_tables& tables, std::size_t size, const description& about);

/// A .3dl: a line of `size` input codes up to 1023, then `size`^3 triples of 12-bit codes, blue running fastest.
/// `size` from 4 (readers take a shorter first line for a triple) to 129. Readers guess the depth from the largest
/// code, so a correction that stays below 2048 everywhere is refused: it would be read as one of fewer bits.
std::string threedl_file(const drive_map& map, std::size_t size, const description& about);
std::string threedl_file(const device_tables& tables, std::size_t size, const description& about);

}  // namespace corvantile
