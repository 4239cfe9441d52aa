#pragma once
// A model with a residual run backwards: which drives show a colour, or the colour nearest to it.

#include <cstddef>
#include <functional>
#include <span>
#include <vector>

#include "corvantile/residual/prepared_residual_model.hpp"
#include "corvantile/residual/uniform_colour.hpp"

namespace corvantile {

/// A colour counts as shown if it is missed by no more than this, in L*a*b* against the measured white.
inline constexpr double shown_within = 0.02;

struct found_drive {
  vec3 drive;       ///< 0..1
  double miss = 0;  ///< distance of what it shows from what was wanted, in L*a*b* against the measured white
  bool reached() const { return miss <= shown_within; }
};

/// Drives that show the colour `xyz` (in the unit of the measurements), searched in L*a*b* from `start`, such as what
/// tables make of it. Misses are searched again from two other places. What is out of reach still becomes the nearest
/// colour in Oklab as seen against the white in `space`: that of the least
///   dL^2 + da^2 + (1 + C / (C + 0.03)) dh^2
/// with dL, da and dh the distances in lightness, along the wanted hue and across it, and C the wanted chroma. The
/// weight keeps blue blue; on the distances rather than their squares it makes neighbouring colours jump.
found_drive drive_for(const prepared_residual_model& display, const oklab_space& space, const vec3& xyz,
                      const vec3& start);

/// How far a long job is: called now and then, on the caller's thread, with what is done and what there is to do.
using progress = std::function<void(std::size_t done, std::size_t of)>;

/// `drive_for` each of the colours `xyz`, in order, `white` being the white against which they are seen. `drive`
/// holds the starts, and then what was found. Returns the misses, in L*a*b*. Each stands alone: results do not depend
/// on `threads` (0: as many as the machine runs at once). `told` may throw to stop the job. Throws
/// `fault::not_finite` if a colour is not finite; a start that is not a number starts at 0.
std::vector<double> drives_for(const prepared_residual_model& display, const vec3& white, std::span<const vec3> xyz,
                               std::span<vec3> drive, unsigned threads = 0, const progress& told = {});

}  // namespace corvantile
