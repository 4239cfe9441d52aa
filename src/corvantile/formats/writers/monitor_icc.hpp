#pragma once
// The profile of a display as it was measured, for desktops that manage colour themselves: no tables needed.

#include <cstddef>
#include <string>

#include "corvantile/formats/writers/icc_profile.hpp"
#include "corvantile/monitor/monitor.hpp"

namespace corvantile {

/// The display of a fitted model: its tone curves at `points` even drives, its primaries and white. Luminances are
/// left out: only the caller knows whether the measurements were in cd/m2.
profiled_display as_measured(const monitor& mon, std::size_t points = 1024);

/// A profile without `vcgt`.
std::string monitor_icc_file(const profiled_display& display, const description& about);

}  // namespace corvantile
