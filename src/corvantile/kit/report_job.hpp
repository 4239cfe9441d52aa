#pragma once
// The report about a solved job.

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "corvantile/appraisal/check.hpp"
#include "corvantile/kit/job.hpp"
#include "corvantile/report/page.hpp"

namespace corvantile::kit {

/// What the page says besides figures.
struct report_words {
  std::string title;   ///< the display's name; empty: as far as it is known
  std::string folder;  ///< where the job lies, for the commands that the page names
};

/// All that the page shows. `measurements` judges those of the job; `record` is its job.json.
report_data report_of(const job& j, const quality& measurements, const nlohmann::ordered_json& record,
                      const report_words& words);

}  // namespace corvantile::kit
