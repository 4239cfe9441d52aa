#pragma once
// .spi1d and .spimtx files, with an OpenColorIO configuration that applies them in order: exact for every correction.

#include <vector>

#include "corvantile/formats/writers/writer.hpp"

namespace corvantile {

/// `preLUT.spi1d`, `matrix.spimtx`, `postLUT.spi1d` and `config.ocio`, whose view "corrected" applies the three;
/// of a gray-axis job only the last two. The description goes into the configuration: the others hold no comments.
std::vector<file_content> spi_files(const device_tables& tables, const description& about);

}  // namespace corvantile
