#pragma once
// What a job will do to a display, in words.

#include <vector>

#include "corvantile/appraisal/check.hpp"
#include "corvantile/appraisal/outcome.hpp"
#include "corvantile/job/settings.hpp"

namespace corvantile {

/// Findings about a job, worst first: light lost, primaries and white that miss their target by more than is seen,
/// the grays' differences, and settings that are seldom meant. `predicted` is the outcome of a job with these
/// settings.
std::vector<finding> check_plan(const settings& set, const outcome& predicted);

}  // namespace corvantile
