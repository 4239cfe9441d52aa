#pragma once
// A job in the kit: its inputs and its results.

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
  opts names;                                           ///< with the file names of the job's folder
  reasons why;                                          ///< comments for settings.txt
  std::string measurements;                             ///< text of the measurement file
  std::optional<std::string> gamma = {}, factors = {};  ///< texts of the gamma file and of the gray factors
  nlohmann::ordered_json refined = {};  ///< the record's part about the round before; null in the first round
};

/// A solved job.
struct job {
  job_inputs inputs;
  measurement_file file;
  std::optional<tone_samples> tone;
  correction result;
  job_figures figures;

  const settings& set() const { return inputs.names.set; }
};

/// Reads a settings file, sets its mode and fills its `xytable`. Throws `fault::setting`.
opts read_settings_file(const std::string& name);

/// Parses the texts and solves. Throws `failure`.
job solve_job(job_inputs inputs);

/// Solves a job for `samples` with the settings of `read_settings_file`, and returns its findings. Reads the files
/// that the settings name.
std::vector<finding> findings_with(const opts& names, const measurements& samples);

}  // namespace corvantile::kit
