#include "kit/tables_on_disk.hpp"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <system_error>
#include <vector>

#include "driver/tables.hpp"
#include "kit/files.hpp"
#include "kit/job_folder.hpp"
#include "utils/failure.hpp"
#include "utils/text.hpp"

namespace corvantile::kit {
namespace {

matrix table_in(const std::string& path) {
  const std::string text = read_input(path);
  number_scanner numbers(text);
  std::vector<double> v;
  for (double x = 0;;) {
    const auto found = numbers.next(x);
    if (found == number_scanner::result::end) break;
    if (found == number_scanner::result::bad || !std::isfinite(x)) refuse_content(printable(path), numbers.problem());
    v.push_back(x);
  }
  if (v.size() < 6 || v.size() % 3 != 0)
    refuse_content(printable(path), "a table has three columns and at least two rows");
  if (std::ranges::all_of(v, [](double x) { return x == std::floor(x); }) && std::ranges::max(v) > 1) {
    refuse_content(printable(path),
                   "holds integers; without a job's record their number of bits is not known. Solve with nbits=0");
  }
  matrix table(v.size() / 3, 3);
  for (std::size_t i = 0; i < v.size(); ++i) table(i / 3, i % 3) = v[i];
  return table;
}

front_end chain(const matrix* pre, const mat3& mix, const matrix& post) {
  constexpr std::array<double, 2> ends{0.0, 1.0};
  const matrix identity = in_all_channels(ends);
  front_end fe;
  set3chluts(fe, pre != nullptr ? pre : &identity, &post, &mix);
  return fe;
}

constexpr mat3 unit{{vec3{{1, 0, 0}}, vec3{{0, 1, 0}}, vec3{{0, 0, 1}}}};

}  // namespace

front_end front_end_on_disk(const std::string& folder) {
  const auto holds = [&](const char* name) {
    std::error_code none;
    return std::filesystem::exists(folder + name, none);
  };
  if (holds("/job.json")) {
    const correction result = open_job_folder(folder).result;
    if (!result.two) return chain(nullptr, unit, result.gray);
    return chain(&result.two->prelut, result.two->matrix, result.two->postlut);
  }
  const matrix post = table_in(folder + "/postLUT.txt");
  if (!holds("/preLUT.txt") || !holds("/matrix.txt")) return chain(nullptr, unit, post);
  const matrix pre = table_in(folder + "/preLUT.txt");
  const matrix m = table_in(folder + "/matrix.txt");
  if (m.rows() != 3) refuse_content(printable(folder + "/matrix.txt"), "a matrix has three rows");
  mat3 mix;
  for (std::size_t i = 0; i < 3; ++i)
    for (std::size_t j = 0; j < 3; ++j) mix(i, j) = m(i, j);
  return chain(&pre, mix, post);
}

}  // namespace corvantile::kit
