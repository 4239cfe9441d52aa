#pragma once
// A header of C99 (and C++) with the tables as constants, both integer and float.

#include "corvantile/formats/writers/memory_files.hpp"

namespace corvantile {

/// `correction_tables.h`. Each table `NAME` in the layout and bits asked for: `uint16_t NAME[3][N]` planar,
/// `[N][3]` interleaved, `uint32_t` or `uint64_t NAME[N]` packed; and as `float NAME_float[3][N]` or `[N][3]`. The
/// matrix as `int16_t matrix_q2_14[3][3]` or `int32_t matrix_q15_16[3][3]`, and as `float matrix_float[3][3]`.
memory_files c_header_files(const device_tables& tables, const description& about,
                            const memory_options& options = {});

}  // namespace corvantile
