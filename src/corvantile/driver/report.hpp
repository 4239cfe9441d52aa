#pragma once
// What verbose mode says about a result.

#include <iosfwd>
#include <optional>

#include "corvantile/job/correction.hpp"
#include "corvantile/monitor/monitor.hpp"
#include "corvantile/monitor/synthetic_monitor.hpp"
#include "corvantile/numerics/matrix.hpp"

namespace corvantile {

/// Prints how the solutions went: for the two-table solution `report_ramps` against the clipped and against the
/// wanted target, and for each solution its processor time.
void report_solution(std::ostream& out, const correction& result);

/// Prints the colour temperature and then the luminance of every row of a gray ramp: `inputs` as `mon` shows them.
/// Then, where a `white` (x, y) is wanted, each row's distance from it in CIE 1976 u'v'.
void report_gray_ramp(std::ostream& out, const monitor& mon, const matrix& inputs,
                      const std::optional<vec2>& white = {});

/// Drives seven ramps of 200 samples through both displays, and prints each ramp's largest CIEDE2000 difference and
/// then all 200. Reference white of the Lab values is `syn_whitepoint`, for both displays: not the white they show.
void report_ramps(std::ostream& out, const monitor& mon, const synthetic_monitor& syn);

}  // namespace corvantile
