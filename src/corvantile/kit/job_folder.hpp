#pragma once
// A solved job as a folder: tables, settings, measurements, and a record that proves that they belong together.

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "corvantile/appraisal/verdict.hpp"
#include "corvantile/kit/job.hpp"
#include "corvantile/utils/file_output.hpp"

namespace corvantile::kit {

/// The names in a job's folder.
namespace folder {
inline constexpr const char* settings = "settings.txt";          ///< `Corvantile` makes the same tables from it
inline constexpr const char* measurements = "measurements.txt";  ///< a copy of the input, like the next two
inline constexpr const char* gamma = "gamma.txt";
inline constexpr const char* gray_factors = "gray_factors.txt";
inline constexpr const char* record = "job.json";     ///< settings as understood, checksums, warnings, figures
inline constexpr const char* exports = "exports";     ///< folder of files for devices
inline constexpr const char* report = "report.html";  ///< the page
inline constexpr const char* after = "after.txt";     ///< in the folder of a round: readings with its tables loaded
/// The folder that keeps round `n`, counted from 1, after a later one.
std::string round(int n);
}  // namespace folder

/// Every file of the folder, with paths relative to it and job.json last, and the record in job.json.
struct job_files {
  std::vector<text_file> files;
  nlohmann::ordered_json record;
};

/// `judged` is what to expect of the correction, if it is known.
job_files files_of(const job& j, const verdict* judged = nullptr);

struct opened_job {
  job solved;
  nlohmann::ordered_json record;
};

/// Reads a folder and solves its job again. Throws `fault::content` if the record is missing, if files are missing or
/// differ from those it lists (such as an old table that another job left in the folder), or if the tables solved now
/// are different. They may differ by up to 1e-9, or by one code, because the job may come from another machine.
opened_job open_job(const std::string& folder);

/// Whether the folder contains a job.
bool is_job_folder(const std::string& folder);

/// The round of a record, counted from 1. Throws `fault::content` if the record has no valid one.
int round_of(const nlohmann::ordered_json& record);

/// The names of all files that the record lists, and job.json last.
std::vector<std::string> listed_files(const nlohmann::ordered_json& record);

/// The warnings of a job for people, a line each.
std::vector<std::string> warning_lines(const correction& result);

}  // namespace corvantile::kit
