#pragma once
// A solved job as a folder: tables, settings, measurements, and a record that says that they belong together.
//
// The folder holds
//   settings.txt      with which `Corvantile`, run in the folder, gives the same tables again
//   measurements.txt  and, where the settings name them, gamma.txt, gray_factors.txt: copies of the inputs
//   preLUT.txt, matrix.txt, postLUT.txt: those that the mode has, byte for byte as `Corvantile` writes them
//   job.json          program and version, mode, settings as understood, checksums, warnings, figures
// and, once it was refined,
//   round-1, ...      the rounds before: each such a folder of its own, with what was measured behind its tables

#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "corvantile/appraisal/outcome.hpp"
#include "corvantile/driver/profile.hpp"
#include "corvantile/job/correction.hpp"
#include "corvantile/utils/file_output.hpp"

namespace corvantile::kit {

inline constexpr const char* gray_factors_name = "gray_factors.txt";

/// The inputs of a job as texts. In `names`, file names are those of the folder.
struct job_inputs {
  profile names;
  std::string measurements;
  std::optional<std::string> gamma;
  std::optional<std::string> factors = {};  ///< of the grays, where the settings name a file of them
  /// Comments for settings.txt, by key.
  std::map<std::string, std::string, std::less<>> why;
  nlohmann::ordered_json refined = {};  ///< what the record says of earlier rounds; null for the first
};

/// A job and what came of it.
struct solved_job {
  profile names;
  measurements samples;
  std::optional<tone_samples> tone;
  correction result;
  outcome figures;
};

/// Reads a settings file; its mode is named and its target filled in. Throws `fault::setting`.
profile read_settings_file(const std::string& name);

/// Reads the texts and solves. Throws `failure`.
solved_job solve_job(const job_inputs& inputs);

/// Every file of the folder, `path`-less, job.json last.
std::vector<text_file> files_of(const job_inputs& inputs, const solved_job& job);

/// The record alone.
nlohmann::ordered_json record_of(const job_inputs& inputs, const solved_job& job);

/// A job as its folder holds it, and solved again.
struct opened_job {
  job_inputs inputs;
  solved_job job;
  nlohmann::ordered_json record;
};
/// Throws `fault::content` where the record is missing or the files are not those that it lists: after another job in
/// the same folder, an old table may still lie there.
opened_job open_job(const std::string& folder);

/// The round that a record is of, counted from 1. Throws `fault::content` where it says nonsense about it.
int round_of(const nlohmann::ordered_json& record);

/// The names of the files that a record lists, job.json last.
std::vector<std::string> listed_files(const nlohmann::ordered_json& record);

/// Warnings as people read them, a line each.
std::vector<std::string> warning_lines(const correction& result);

}  // namespace corvantile::kit
