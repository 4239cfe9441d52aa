#pragma once
// What a profile of the display holds in its tables, as plain numbers: colours of drives, and drives of colours.

#include <cstddef>
#include <functional>
#include <vector>

#include "corvantile/residual/inverse.hpp"

namespace corvantile {

/// X, Y, Z, in the unit of the measurements, of size^3 drives on an even grid over 0..1, blue running fastest, as in
/// ICC profiles. `size` is at least 2; `threads` as for `in_parallel`.
std::vector<vec3> forward_grid(const prepared_residual_model& display, std::size_t size, unsigned threads = 0);

/// A place on the grid, three numbers 0..1, to the colour that is meant there: X, Y, Z in the unit of the
/// measurements, any finite numbers.
using meant_colour = std::function<vec3(const vec3&)>;

/// Drives that show the colours meant on such a grid, the last coordinate running fastest, or the nearest to them as
/// seen against the display's own white; see `drive_for`. `base` is the additive model of the display, where searches
/// start. `meant` and `told` are called on this thread only.
std::vector<vec3> backward_grid(const prepared_residual_model& display, const monitor& base,
                                const meant_colour& meant, std::size_t size, unsigned threads = 0,
                                const progress& told = {});

}  // namespace corvantile
