#include "corvantile/appraisal/banding.hpp"

#include <algorithm>
#include <array>
#include <cmath>

namespace corvantile {

banding_figures banding(const std::function<vec3(const vec3&)>& chain, int bits) {
  const double top = std::ldexp(1.0, bits) - 1;
  banding_figures b{bits, {}, {1, 1, 1}};
  vec3 previous{{-1, -1, -1}};
  std::array<double, 3> run{{1, 1, 1}};
  for (double i = 0; i <= top; ++i) {
    const vec3 out = chain({{i / top, i / top, i / top}});
    for (std::size_t c = 0; c < 3; ++c) {
      const double code = std::round(out[c] * top);
      run[c] = code == previous[c] ? run[c] + 1 : 1;
      b.steps_lost[c] += code == previous[c] ? 1 : 0;
      b.longest_run[c] = std::max(b.longest_run[c], run[c]);
      previous[c] = code;
    }
  }
  return b;
}

clip_figures clipped_entries(const matrix& table, int bits) {
  const double top = bits > 0 ? std::ldexp(1.0, bits) - 1 : 1;
  clip_figures r;
  for (std::size_t c = 0; c < std::min<std::size_t>(3, table.cols()); ++c) {
    for (const double v : table.col(c)) {
      const double code = bits > 0 ? std::round(v * top) : v;
      if (code < 0) ++r.below[c];
      if (code > top) ++r.above[c];
    }
  }
  return r;
}

}  // namespace corvantile
