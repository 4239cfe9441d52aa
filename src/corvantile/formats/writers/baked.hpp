#pragma once
// The whole correction baked into a three-dimensional grid, and so approximate between its points: .cube and .3dl.

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

/// A line of `size` input codes up to 1023, then `size`^3 triples of codes up to 4095, blue running fastest. `size`
/// from 4 (readers take a shorter first line for a triple) to 129. Readers guess the depth from the largest code: a
/// correction that stays below 2048 everywhere, and so would be read as one of fewer bits, is refused.
std::string threedl_file(const drive_map& corrected, std::size_t size, const description& about);
/// The same from tables of at least 4096 rows.
std::string threedl_file(const device_tables& tables, std::size_t size, const description& about);

}  // namespace corvantile
