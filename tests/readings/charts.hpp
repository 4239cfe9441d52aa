#pragma once
// Charts as an instrument would read them from simulated displays.

#include <algorithm>
#include <functional>

#include "corvantile/readings/ramps.hpp"
#include "tools/simulated_display.hpp"

namespace corvantile {

/// What a display shows for a drive.
using screen = std::function<vec3(const vec3&)>;

inline void read(readings& all, const screen& show, const vec3& drive) {
  all.rows.push_back({drive, show(drive), all.rows.size() + 10});
}

/// Four ramps of `levels` levels that share one white and one black, then as many mixtures, half of them near gray.
inline readings chart(const screen& show, int levels, int mixtures = 0) {
  readings all;
  all.source = "chart";
  read(all, show, {});
  for (int i = 1; i < levels; ++i) {
    const double u = static_cast<double>(i) / (levels - 1);
    for (const vec3& d : {vec3{{u, u, u}}, vec3{{u, 0, 0}}, vec3{{0, u, 0}}, vec3{{0, 0, u}}}) read(all, show, d);
  }
  for (int i = 0; i < mixtures; ++i) {
    const double u = (i + 0.7) / (mixtures + 1), d = i % 2 == 0 ? 0.1 * u : 0.4 * u;
    read(all, show, {{u, u - d * (i % 3) / 2, u - d}});
  }
  return all;
}

inline screen additive(const simulated_display& d) {
  return [d](const vec3& drive) { return shown(d, drive); };
}

/// As dynamic backlights do: whatever lights all channels gets brighter, by up to `gain`.
inline screen not_additive(const simulated_display& d, double gain) {
  return [d, gain](const vec3& drive) {
    const vec3 dark = dark_light(d);
    return dark + (1 + gain * std::min({drive[0], drive[1], drive[2]})) * (shown(d, drive) - dark);
  };
}

}  // namespace corvantile
