#pragma once
// A solved job as a folder: tables, settings, measurements, and a record that says that they belong together.

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "corvantile/kit/job.hpp"
#include "corvantile/utils/file_output.hpp"

namespace corvantile::kit {

/// The names in a job's folder.
namespace folder {
inline constexpr const char* settings = "settings.txt";  ///< `Corvantile`, run in the folder, makes the same tables
inline constexpr const char* measurements = "measurements.txt";  ///< this and the next two are copies of the inputs
inline constexpr const char* gamma = "gamma.txt";
inline constexpr const char* gray_factors = "gray_factors.txt";
inline constexpr const char* record = "job.json";     ///< settings as understood, checksums, warnings, figures
inline constexpr const char* exports = "exports";     ///< what devices load
inline constexpr const char* report = "report.html";  ///< the page
inline constexpr const char* after = "after.txt";     ///< in the folder of an earlier round: what was read behind it
/// The folder of round `n`, counted from 1, once there is a later one.
std::string round(int n);
}  // namespace folder

/// Every file of the folder, named relative to it, job.json last, and that record.
struct job_files {
  std::vector<text_file> files;
  nlohmann::ordered_json record;
};
job_files files_of(const job& j);

/// A job as its folder holds it.
struct opened_job {
  job solved;
  nlohmann::ordered_json record;
};

/// Reads a folder and solves its job again. Throws `fault::content` if the record is missing, if the files are not
/// those that it lists (after another job in the same folder, an old table may still lie there), or if this program
/// solves the job to other tables. On another machine they may differ by up to 1e-9, or by one code.
opened_job open_job(const std::string& folder);

/// Whether a folder is that of a job.
bool is_job_folder(const std::string& folder);

/// The round that a record is of, counted from 1. Throws `fault::content` if it says nonsense about it.
int round_of(const nlohmann::ordered_json& record);

/// The names of the files that a record lists, job.json last.
std::vector<std::string> listed_files(const nlohmann::ordered_json& record);

/// Warnings as people read them, a line each.
std::vector<std::string> warning_lines(const correction& result);

}  // namespace corvantile::kit
