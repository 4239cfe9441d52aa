#pragma once
// Memory initialisation files of Intel (Altera) tools.

#include "corvantile/formats/writers/memory_words.hpp"

namespace corvantile {

/// `pre_lut.mif`, `matrix_q2_14.mif` (or `matrix_q15_16.mif`), `post_lut.mif`; of a gray-axis job only the last.
memory_files mif_files(const device_tables& tables, const description& about, const memory_options& options = {});

}  // namespace corvantile
