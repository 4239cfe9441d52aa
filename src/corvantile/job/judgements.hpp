#pragma once
// What is not to be trusted, told from what went into a job and from what came out of it. Each function looks at
// finished records and changes nothing; thresholds stand, with their reasons, beside the code that uses them.

#include <optional>
#include <vector>

#include "corvantile/job/correction.hpp"
#include "corvantile/job/finding.hpp"
#include "corvantile/job/settings.hpp"
#include "corvantile/matching/matching.hpp"
#include "corvantile/monitor/measurements.hpp"
#include "corvantile/monitor/monitor.hpp"

namespace corvantile {

/// Measurements that contradict the model (judge_measurements.cpp): ramps that end short of zero or begin short of
/// full drive, darks that differ, luminances that rise or stay level, channels that do not add up to the white. `mon`
/// is the model fitted to `samples`.
std::vector<finding> judge_measurements(const measurements& samples, const monitor& mon);

/// Curves with more pieces than the levels carry, so that they swing between the readings (judge_fit.cpp). `mon` is a
/// monitor as measured, without front end.
std::vector<finding> judge_fit(const monitor& mon);

/// The largest `numsegs`, at most 256, with which the pieces of every curve over luminance are held by readings on
/// both sides; 2, which is no `numsegs`, where the levels of `mon` carry none. Counts the readings' distances only:
/// with little noise a few more pieces do no harm yet, and `judge_fit` is silent.
int largest_numsegs(const monitor& mon);

/// All that can be said before anything is solved: both of them.
std::vector<finding> judge(const measurements& samples, const monitor& mon);

/// The two-table solution (judge_tables.cpp): its white, its matrix, and the codes that it is written in.
std::vector<finding> judge_two_tables(const settings& set, const two_table_solution& two);

/// The gray match on `display` (judge_grays.cpp): a table that was not filled, whites out of reach, a swath that
/// costs light, grays that were not found. For the swath the top without one is searched.
std::vector<finding> judge_grays(const settings& set, const monitor& display, const gray_match& match);

}  // namespace corvantile
