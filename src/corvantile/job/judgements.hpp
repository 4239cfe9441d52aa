#pragma once
// What not to trust in the inputs and the result of a job. The thresholds, with their reasons, are in the .cpp files.

#include <optional>
#include <vector>

#include "corvantile/job/correction.hpp"
#include "corvantile/job/finding.hpp"
#include "corvantile/job/settings.hpp"
#include "corvantile/matching/matching.hpp"
#include "corvantile/monitor/measurements.hpp"
#include "corvantile/monitor/monitor.hpp"

namespace corvantile {

/// Measurements that contradict the model: ramps that end above zero or begin below full drive, darks that differ,
/// luminances that rise towards the dark or stay level, channels that do not add up to the white. `mon` is the model
/// fitted to `samples`.
std::vector<finding> judge_measurements(const measurements& samples, const monitor& mon);

/// Curves that swing between the readings, because they have more pieces than the levels support. `mon` has no front
/// end.
std::vector<finding> judge_fit(const monitor& mon);

/// The largest `numsegs`, at most 256, for which every piece of the curves over luminance has readings on both sides.
/// 2, which is not a valid `numsegs`, if the levels of `mon` are too few for any. It looks only at the gaps between
/// readings. If these have little noise, a few more pieces do no harm, and `judge_fit` says nothing.
int largest_numsegs(const monitor& mon);

/// Both of these: everything that can be said before solving.
std::vector<finding> judge(const measurements& samples, const monitor& mon);

/// The two-table solution: its white, its matrix and its integer codes.
std::vector<finding> judge_two_tables(const settings& set, const two_table_solution& two);

/// The gray match on `display`: a table that was not filled, whites out of reach, a swath that costs light, grays
/// that were not found. For the swath it searches the top of the ramp once more, without one.
std::vector<finding> judge_grays(const settings& set, const monitor& display, const gray_match& match);

}  // namespace corvantile
