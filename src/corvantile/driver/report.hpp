#pragma once
// What verbose mode prints about a result.

#include <iosfwd>
#include <optional>

#include "corvantile/job/correction.hpp"
#include "corvantile/monitor/monitor.hpp"
#include "corvantile/monitor/synthetic_monitor.hpp"
#include "corvantile/numerics/matrix.hpp"

namespace corvantile {

/// Prints the processor time of each solution and, for the two-table solution, `report_ramps` against the clipped
/// target and then against the wanted one.
void report_solution(std::ostream& out, const correction& result);

/// Prints what `mon` shows for the rows of `inputs`: the colour temperature of each, then the luminance of each. If
/// `white` (x, y) is given, it also prints each row's distance from it in CIE 1976 u'v'.
void report_gray_ramp(std::ostream& out, const monitor& mon, const matrix& inputs,
                      const std::optional<vec2>& white = {});

/// Drives seven ramps of 200 samples through both displays. For each it prints the largest CIEDE2000 difference, then
/// all 200. The reference white of both displays' Lab values is `syn_whitepoint`, not the white that they show.
void report_ramps(std::ostream& out, const monitor& mon, const synthetic_monitor& syn);

}  // namespace corvantile
