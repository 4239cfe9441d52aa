#pragma once
// How much of one triangle another covers.

#include "matching/matching.hpp"

namespace corvantile {

/// The share, 0 to 1, of triangle `wanted`'s area that lies within triangle `display`; either sense of rotation. Not
/// a number where `wanted` has no area or a vertex is not finite.
double coverage(const triangle& display, const triangle& wanted);

}  // namespace corvantile
