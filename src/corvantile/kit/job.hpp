#pragma once
// A job as the kit has it: what it is made of, and what came of it.

#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "corvantile/appraisal/job_figures.hpp"
#include "corvantile/documents/measurement_file.hpp"
#include "corvantile/documents/settings_text.hpp"
#include "corvantile/job/correction.hpp"
#include "corvantile/job/tone_samples.hpp"

namespace corvantile::kit {

/// The settings, and the texts of the files that they name.
struct job_inputs {
  opts names;                                           ///< file names are those of the job's folder
  reasons why;                                          ///< comments for settings.txt
  std::string measurements;                             ///< text of the measurement file
  std::optional<std::string> gamma = {}, factors = {};  ///< texts of the gamma file and of the gray factors
  nlohmann::ordered_json refined = {};  ///< what the record says of earlier rounds; null for the first
};

/// A solved job.
struct job {
  job_inputs inputs;
  measurement_file file;  ///< the measurements, and what is known about them
  std::optional<tone_samples> tone;
  correction result;
  job_figures figures;

  const settings& set() const { return inputs.names.set; }
};

/// Reads a settings file, names its mode and fills in its target. Throws `fault::setting`.
opts read_settings_file(const std::string& name);

/// Reads the texts and solves. Throws `failure`.
job solve_job(job_inputs inputs);

/// What a job with these settings would say about `samples`: solves it. The settings' mode is named and `xytable`
/// filled; the files that they name are read.
std::vector<finding> findings_with(const opts& names, const measurements& samples);

}  // namespace corvantile::kit
