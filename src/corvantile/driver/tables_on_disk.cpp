#include "corvantile/driver/tables_on_disk.hpp"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <system_error>
#include <vector>

#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/file_input.hpp"
#include "corvantile/utils/number_scanner.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {
namespace {

matrix table_in(const std::string& path) {
  const std::optional<std::string> text = read_file(path);
  if (!text) throw failure(fault::content, "Cannot open " + printable(path));
  number_scanner numbers(*text);
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

}  // namespace

tables_on_disk read_tables(const std::string& folder) {
  const auto holds = [&](const char* name) {
    std::error_code none;
    return std::filesystem::exists(folder + name, none);
  };
  tables_on_disk tables{.pre = {}, .post = table_in(folder + "/postLUT.txt")};
  if (!holds("/preLUT.txt") || !holds("/matrix.txt")) return tables;
  tables.pre = table_in(folder + "/preLUT.txt");
  const matrix m = table_in(folder + "/matrix.txt");
  if (m.rows() != 3) refuse_content(printable(folder + "/matrix.txt"), "a matrix has three rows");
  for (std::size_t i = 0; i < 3; ++i)
    for (std::size_t j = 0; j < 3; ++j) tables.mix(i, j) = m(i, j);
  return tables;
}

}  // namespace corvantile
