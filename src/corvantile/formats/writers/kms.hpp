#pragma once
// Blobs for the colour properties of a Linux display controller (KMS): DEGAMMA_LUT, CTM, GAMMA_LUT. The exact shape
// of every correction, quantised. Layouts after the kernel's drm_mode.h (drm_color_lut, drm_color_ctm,
// drm_color_lut32, drm_color_ctm_3x4).

#include <cstddef>
#include <vector>

#include "corvantile/formats/writers/writer.hpp"

namespace corvantile {

struct kms_options {
  std::size_t entries = 1024;  ///< of each table, 2 to 65536; the driver says how many it wants
  bool wide = false;           ///< 32-bit entries and a 3 x 4 matrix, for plane colour pipelines
};

/// `degamma_lut.bin`, `ctm.bin`, `gamma_lut.bin`, little-endian, and a `README.txt` that tells their order; of a
/// gray-axis job only the last two. Tables are resampled and clamped to 0..1; the README says how many entries were
/// clamped.
std::vector<file_content> kms_files(const device_tables& tables, const description& about,
                                    const kms_options& options = {});

}  // namespace corvantile
