#pragma once
// Coefficient files of AMD (Xilinx) tools.

#include "corvantile/formats/writers/memory_words.hpp"

namespace corvantile {

/// `pre_lut.coe`, `matrix_q2_14.coe` (or `matrix_q15_16.coe`), `post_lut.coe`; of a gray-axis job only the last.
memory_files coe_files(const device_tables& tables, const description& about, const memory_options& options = {});

}  // namespace corvantile
