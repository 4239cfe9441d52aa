#pragma once
// The report about a solved job: its page, and what a measurement behind its tables adds.

#include <string>
#include <vector>

#include "corvantile/kit/checked.hpp"
#include "corvantile/kit/job_folder.hpp"
#include "corvantile/readings/readings.hpp"
#include "corvantile/report/page.hpp"

namespace corvantile::kit {

/// What the page needs besides the job.
struct report_wishes {
  std::string title;   ///< the display's name; empty: as far as it is known
  std::string folder;  ///< where the job lies, for the commands that the page names
};

/// Every figure of the page. `checked` are the measurements of the job, judged; `record` is its job.json.
report_data report_of(const solved_job& job, const checked& measured, const nlohmann::ordered_json& record,
                      const report_wishes& wishes);

/// Adds readings that were taken behind the loaded tables, with what only their source can tell: a calibration that
/// was still in effect, and the whites' drift since the first measurement.
void add_measured(report_data& data, const solved_job& job, const checked& measured, const readings& after);

}  // namespace corvantile::kit
