#pragma once
// Charts to measure: which patches, in which order, and the files that programs show them from.

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "corvantile/numerics/matrix.hpp"

namespace corvantile {

/// Drives from 0 to 1, all multiples of 1/255: eight bits show them exactly.
struct chart_patch {
  vec3 drive;
  friend bool operator==(const chart_patch&, const chart_patch&) = default;
};

/// Which ramps a chart holds besides the white one.
enum class chart_ramps {
  measured,  ///< red, green and blue ramps of the same levels
  derived    ///< the three full primaries: the ramps are computed from white later
};

/// A chart of 5 to 256 even `levels` (17 levels: 65 patches, derived 20) and `verify` further patches, at most 10000,
/// that are on no ramp: two in three spread over the cube, one in three within 0.04 of gray.
///
/// It shows drift: white and black come first, after every 20 patches, and last. The patches between them are in
/// mixed order, so that a slow change scatters the readings instead of bending a curve. The same arguments give the
/// same chart. Throws `fault::setting` outside the bounds.
///
/// The further patches are points of Halton's sequence: J. H. Halton, Numerische Mathematik 2 (1960).
std::vector<chart_patch> make_chart(std::size_t levels, chart_ramps ramps, std::size_t verify = 0);

/// For ArgyllCMS's dispread and fakeread. X, Y, Z are those of an sRGB display. `date` may be empty.
std::string write_chart_ti1(std::span<const chart_patch> chart, std::string_view date);

/// A table of codes 0 to 255 with empty columns X, Y, Z in cd/m2 to fill in.
std::string write_chart_csv(std::span<const chart_patch> chart);

/// HCFR's list of user patches: the nearest video codes 16 to 235, and a name that states their drive
/// (`hcfr_patch_name`).
std::string write_chart_hcfr(std::span<const chart_patch> chart);

}  // namespace corvantile
