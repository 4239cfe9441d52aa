#pragma once
// Measurements, judged: what `check` says and `make` heeds.

#include <vector>

#include "corvantile/appraisal/check.hpp"
#include "corvantile/appraisal/outcome.hpp"
#include "corvantile/driver/profile.hpp"
#include "corvantile/job/correction.hpp"
#include "corvantile/kit/imported.hpp"
#include "corvantile/monitor/measurements.hpp"

namespace corvantile::kit {

struct checked {
  measurements samples;
  provenance known;
  quality figures;
};

/// Our own measurement file as it stands, anything else as `import` would take it.
checked check_source(const source_options& o);

/// What a job did to the display, its warnings among them; worst first.
std::vector<finding> findings_of_job(const settings& set, const correction& result, const outcome& figures);

/// What a job with these settings would do: solves it. The mode is named and `xytable` filled; `p.gamfile` and
/// `p.grayfile` are read where they are named.
std::vector<finding> plan_findings(const profile& p, const measurements& samples);

}  // namespace corvantile::kit
