#include "corvantile/kit/front_end_on_disk.hpp"

#include <array>
#include <filesystem>
#include <system_error>

#include "corvantile/driver/tables_on_disk.hpp"
#include "corvantile/kit/job_folder.hpp"

namespace corvantile::kit {
namespace {

// The tables of a job as they were solved, whatever their bits.
tables_on_disk tables_of_job(const std::string& folder) {
  const correction result = open_job(folder).job.result;
  if (!result.two) return {.pre = {}, .post = result.gray};
  return {.pre = result.two->prelut, .mix = result.two->matrix, .post = result.two->postlut};
}

}  // namespace

front_end front_end_on_disk(const std::string& folder) {
  std::error_code none;
  const bool of_job = std::filesystem::exists(folder + "/job.json", none);
  const tables_on_disk tables = of_job ? tables_of_job(folder) : read_tables(folder);
  constexpr std::array<double, 2> ends{0.0, 1.0};
  const matrix identity = in_all_channels(ends);
  front_end fe;
  set3chluts(fe, tables.pre ? &*tables.pre : &identity, &tables.post, &tables.mix);
  return fe;
}

}  // namespace corvantile::kit
