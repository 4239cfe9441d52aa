#pragma once
// Points that fill a cube evenly, however many are taken.

#include <cstddef>

#include "corvantile/numerics/matrix.hpp"

namespace corvantile {

/// The digits of `index` to the base `base`, mirrored at the point: 0 to below 1.
constexpr double mirrored_digits(std::size_t index, std::size_t base) {
  double sum = 0;
  double place = 1;
  for (; index > 0; index /= base) {
    place /= static_cast<double>(base);
    sum += place * static_cast<double>(index % base);
  }
  return sum;
}

/// Point `index` of Halton's sequence to the bases 2, 3 and 5; point 0 is the origin.
/// J. H. Halton, Numerische Mathematik 2 (1960).
constexpr vec3 halton(std::size_t index) {
  return {{mirrored_digits(index, 2), mirrored_digits(index, 3), mirrored_digits(index, 5)}};
}

}  // namespace corvantile
