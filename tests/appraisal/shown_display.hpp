#pragma once
// A simulated display with tables.

#include <cmath>

#include "corvantile/appraisal/scene.hpp"
#include "tests/monitor/fitted.hpp"

namespace corvantile {

struct shown_display {
  monitor display;
  device_tables tables;

  /// Asked for: sRGB primaries at D65, gamma 2.2.
  subject as_subject() const {
    return {.display = display,
            .tables = tables,
            .white = {{0.3127, 0.3290}},
            .primaries = triangle{{{{0.64, 0.33}}, {{0.30, 0.60}}, {{0.15, 0.06}}}},
            .tone = [](double s) { return std::pow(s, 2.2); }};
  }
};

inline matrix power_table(std::size_t n, double exponent) {
  matrix t(n, 3);
  for (std::size_t i = 0; i < n; ++i) {
    const double v = std::pow(static_cast<double>(i) / static_cast<double>(n - 1), exponent);
    set_row3(t, i, {{v, v, v}});
  }
  return t;
}

/// A display that is exactly as asked except for its gamma, and tables that make that 2.2.
inline shown_display shown_example(double gamma = 2.6) {
  simulated_display d;
  d.levels = 65;
  d.extra = 20;
  d.gamma = {{gamma, gamma, gamma}};
  return {fitted(d, 12), {.two_tables = true, .pre = power_table(256, 2.2), .post = power_table(4096, 1 / gamma)}};
}

}  // namespace corvantile
