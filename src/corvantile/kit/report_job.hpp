#pragma once
// The report about a solved job.

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "corvantile/appraisal/check.hpp"
#include "corvantile/kit/job.hpp"
#include "corvantile/report/page.hpp"

namespace corvantile::kit {

struct report_words {
  std::string title;   ///< the display's name; empty: from the measurements
  std::string folder;  ///< of the job, for commands on the page
};

/// The content of the page. `measurements` judges those of the job; `record` is its job.json.
report_data report_of(const job& j, const quality& measurements, const nlohmann::ordered_json& record,
                      const report_words& words);

}  // namespace corvantile::kit
