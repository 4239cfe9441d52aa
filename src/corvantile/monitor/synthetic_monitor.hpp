#pragma once
// An ideal display, built from numbers instead of measurements: what a corrected display should look like.
//
// Transforms come in pairs: `_vec` for one triple and `_mat` for an n x 3 batch, one triple per row, with the same
// bits. They do not clamp their arguments: the tone table continues beyond its ends.

#include <string>
#include <string_view>

#include "corvantile/numerics/matrix.hpp"
#include "corvantile/utils/lut.hpp"

namespace corvantile {

/// The channels share one tone table and add up over a constant black.
struct synthetic_monitor {
  std::string name;  ///< at most 256 characters
  lut table;         ///< input, 0 to 1 -> linear channel value, the same for every channel
  mat3 primaries;    ///< column c is X, Y, Z of channel c at full drive
  vec3 offset;       ///< X, Y, Z added to every output: the black level
};

/// Keeps the first 256 characters of `name`.
synthetic_monitor make_synthetic_monitor(std::string_view name, const mat3& primaries, lut table,
                                         const vec3& offset = {});

/// Input to X, Y, Z: primaries * table(input) + offset.
matrix syn_inp2out_mat(const synthetic_monitor& syn, const matrix& inp);

/// For each column of the primaries matrix, the sum of its three entries. These are not X, Y, Z at full drive, which
/// would be the sums of the rows.
vec3 syn_whitepoint(const synthetic_monitor& syn);

// ---- Held ready: no job calls these ----

/// Input to X, Y, Z, for one triple.
vec3 syn_inp2out_vec(const synthetic_monitor& syn, const vec3& inp);

/// X, Y, Z to input. A tone table that does not rise strictly is inverted through its own monotone smoothing (see
/// `iba`). Singular primaries give a non-finite result.
vec3 syn_out2inp_vec(const synthetic_monitor& syn, const vec3& xyz);
matrix syn_out2inp_mat(const synthetic_monitor& syn, const matrix& xyz);

}  // namespace corvantile
