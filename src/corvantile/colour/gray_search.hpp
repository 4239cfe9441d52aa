#pragma once
// What the searches for whites and gray ramps return, for judging them.

#include <vector>

#include "corvantile/numerics/matrix.hpp"

namespace corvantile {

/// The brightest reachable colour of a requested white.
struct ramp_top {
  vec3 inp;  ///< drive values that show it
  vec3 m;    ///< their monitor values
  vec3 xyz;  ///< the colour, at the scale after the last trial; `inp` shows it to about 3e-4 of the XYZ unit
  bool reached = true;  ///< whether any trial was reachable; if none, the scale is the lower end of the search
};

/// One level of a gray ramp: the wanted colour, the drive values found for it, and the remaining squared XYZ
/// distance.
struct gray_level {
  vec3 target;
  vec3 inp;
  double left = 0;
};

/// How the searches for a gray ramp ended. Levels run from black to the top; the top is its own target.
struct gray_search {
  ramp_top top;
  std::vector<gray_level> levels;
};

}  // namespace corvantile
