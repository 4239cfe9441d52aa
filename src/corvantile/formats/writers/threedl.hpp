#pragma once
// The .3dl file (Lustre, Flame) with values of 12 bit: the whole correction baked into a grid.

#include <cstddef>
#include <string>

#include "corvantile/formats/writers/cube3d.hpp"
#include "corvantile/formats/writers/writer.hpp"

namespace corvantile {

/// A line of `size` input codes up to 1023, then `size`^3 triples of codes up to 4095, blue running fastest. `size`
/// from 4 (readers take a shorter first line for a triple) to 129. Readers guess the depth from the largest code: a
/// correction that stays below 2048 everywhere, and so would be read as one of fewer bits, is refused.
std::string threedl_file(const drive_map& corrected, std::size_t size, const description& about);
/// The same from tables of at least 4096 rows.
std::string threedl_file(const device_tables& tables, std::size_t size, const description& about);

}  // namespace corvantile
