#pragma once
// When one reading of a patch is not enough, and what several of them are worth.

#include <cstddef>
#include <optional>
#include <span>
#include <string>

#include "corvantile/numerics/matrix.hpp"

namespace corvantile::measuring {

/// A patch is *dark* if its light, or what is expected of it, is below `dark` of the white.
///
/// A first reading is enough if it is near what is expected: within `implausible` of it, or `scatter` for a dark
/// patch. If nothing is expected, a bright patch is trusted and a dark one is read twice. From the second reading on,
/// the patch is finished when any two readings agree (within `agreement`; dark: `scatter`), or after `most` of them.
///
/// "Within t" means that X, Y and Z each differ by at most t times the larger of that value and Y, and a small rest
/// that no instrument resolves: `floor` times the white's Y.
struct reread_rule {
  double implausible = 0.20;
  double agreement = 0.05;
  double scatter = 0.10;
  double dark = 0.01;
  double floor = 1e-5;
  std::size_t most = 3;       ///< readings of a patch
  std::size_t most_dark = 5;  ///< and of a dark one
};

/// Why the patch is to be read once more; empty if it is not. `taken` are all its readings, at least one; `white` is
/// the white's Y, or the largest Y so far, all in the same unit.
std::string why_again(std::span<const vec3> taken, const std::optional<vec3>& expected, double white,
                      const reread_rule& rule);

/// The median of X, of Y and of Z: a wild reading among three does no harm, and of two it is the mean.
vec3 median_of(std::span<const vec3> taken);

}  // namespace corvantile::measuring
