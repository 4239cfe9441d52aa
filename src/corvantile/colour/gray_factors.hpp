#pragma once
// What a second measurement corrects in the grays that a display is asked for.

#include <array>
#include <span>
#include <string>

#include "corvantile/numerics/matrix.hpp"
#include "corvantile/utils/lut.hpp"

namespace corvantile {

/// Factors by which X, Y and Z of the wanted grays are multiplied before the model is searched for them: where the
/// model shows 1 and the display 0.9, the factor is 1 / 0.9. Straight lines between drives. Empty: all are 1.
///
/// At full drive only the colour of the factors counts, since the white is made as bright as the display can show
/// it; the others count relative to Y at full drive. The grays that the display is expected to show are those of the
/// model divided by the factors.
struct gray_factors {
  std::array<lut, 3> xyz;  ///< drive 0..1 to the factors of X, Y and Z
  bool empty() const { return xyz[1].x.empty(); }
};

/// Makes factors from n >= 2 drives, rising from 0, and as many triples. Drives are divided by the last. Throws
/// `fault::content`, with `name` and the point, for drives that do not, or for a factor that is not from 0.1 to 10.
gray_factors make_gray_factors(const std::string& name, std::span<const double> drive, std::span<const vec3> factor);

/// At a drive from 0 to 1; 1 each where there are none.
vec3 factors_at(const gray_factors& f, double drive);

/// What the display is expected to show for `drive`, 0 to 1, where the model shows `xyz`, of which `dark` is the dark
/// light of a gray's target: the rest is divided by the factors. In colours the factors count the less the farther
/// they are from gray, as the least drive over the largest: a channel alone was measured by itself.
vec3 expected(const gray_factors& f, const vec3& drive, const vec3& xyz, const vec3& dark);

}  // namespace corvantile
