#pragma once
// What the bits of a device make of its tables.

#include <functional>
#include <string>

#include "corvantile/numerics/matrix.hpp"
#include "corvantile/report/page.hpp"

namespace corvantile {

/// Gray steps lost where the input of `chain` and its output, drives 0 to 1, have `bits` bits each.
banding_record banding(const std::function<vec3(const vec3&)>& chain, int bits);

/// The entries of a table (n x 3) beyond what `bits` bits hold; 0 bits: beyond 0 to 1.
clip_record clipped(const std::string& name, const matrix& table, int bits);

}  // namespace corvantile
