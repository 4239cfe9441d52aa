#pragma once
// What a job does to a display, in words.

#include <vector>

#include "corvantile/appraisal/job_figures.hpp"
#include "corvantile/job/correction.hpp"
#include "corvantile/job/finding.hpp"
#include "corvantile/job/settings.hpp"

namespace corvantile {

/// Findings about a solved job, worst first: light lost, primaries and white that miss their target by more than an
/// eye sees, the grays' differences, settings that are seldom meant, and the job's own warnings.
std::vector<finding> job_findings(const correction& result, const settings& set, const job_figures& figures);

}  // namespace corvantile
