#pragma once
// Corrections of the wanted grays, from a second measurement.

#include <array>
#include <span>
#include <string>

#include "corvantile/numerics/matrix.hpp"
#include "corvantile/utils/lut.hpp"

namespace corvantile {

/// Factors for X, Y and Z of the wanted grays, applied before the model is searched for them: if the model shows 1
/// and the display shows 0.9, the factor is 1 / 0.9. Straight lines connect the drives. Empty means that all factors
/// are 1.
///
/// At full drive only the colour of the factors counts, because white is made as bright as the display can show it.
/// The other factors count relative to Y at full drive. The display is expected to show the model's grays divided by
/// the factors.
struct gray_factors {
  std::array<lut, 3> xyz;  ///< drive 0..1 to the factors of X, Y and Z
  bool empty() const { return xyz[1].x.empty(); }
};

/// Makes factors from n >= 2 drives, rising from 0, and as many triples. Drives are divided by the last one. Throws
/// `fault::content`, naming `name` and the point, if the drives do not rise from 0 or a factor is not from 0.1 to 10.
gray_factors make_gray_factors(const std::string& name, std::span<const double> drive, std::span<const vec3> factor);

/// The factors at a drive from 0 to 1; all 1 if there are none.
vec3 factors_at(const gray_factors& f, double drive);

/// What the display is expected to show for `drive`, 0 to 1, if the model shows `xyz`. `dark` is the dark light in a
/// gray's target; only the rest of `xyz` is divided by the factors. The farther a colour is from gray, the less the
/// factors count (weight: least drive over largest), because a channel alone was measured by itself.
vec3 expected(const gray_factors& f, const vec3& drive, const vec3& xyz, const vec3& dark);

}  // namespace corvantile
