#pragma once
// What the bits of a device make of its tables.

#include <array>
#include <cstddef>
#include <functional>

#include "corvantile/numerics/matrix.hpp"

namespace corvantile {

/// Gray steps that look like their neighbour, and the longest run of these, per channel.
struct banding_figures {
  int bits = 8;
  std::array<double, 3> steps_lost{};   ///< of 2^bits steps
  std::array<double, 3> longest_run{};  ///< inputs that share one output
};

/// For a chain of which input and output, drives 0 to 1, have `bits` bits each.
banding_figures banding(const std::function<vec3(const vec3&)>& chain, int bits);

/// Entries of a table beyond either end, per channel.
struct clip_figures {
  std::array<std::size_t, 3> below{}, above{};
};

/// The entries of a table (n x 3) beyond what `bits` bits hold; 0 bits: beyond 0 to 1.
clip_figures clipped_entries(const matrix& table, int bits);

}  // namespace corvantile
