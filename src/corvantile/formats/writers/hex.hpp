#pragma once
// Memory files for `$readmemh` of Verilog: one hexadecimal word a line.

#include "corvantile/formats/writers/memory_words.hpp"

namespace corvantile {

/// `pre_lut.hex`, `matrix_q2_14.hex` (or `matrix_q15_16.hex`), `post_lut.hex`; of a gray-axis job only the last.
memory_files hex_files(const device_tables& tables, const description& about, const memory_options& options = {});

}  // namespace corvantile
