#include "tools/loaded_tables.hpp"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <vector>

#include "utils/failure.hpp"
#include "utils/text.hpp"

namespace corvantile {
namespace {

matrix rows_in(const std::string& path) {
  const std::optional<std::string> text = read_file(path);
  if (!text) refuse_content(path, "cannot be opened");
  number_scanner numbers(*text);
  std::vector<double> v;
  for (double x = 0; numbers.next(x) == number_scanner::result::number;) v.push_back(x);
  if (v.size() < 6 || v.size() % 3 != 0 || std::ranges::max(v) > 2) refuse_content(path, "no table of reals");
  matrix table(v.size() / 3, 3);
  for (std::size_t i = 0; i < v.size(); ++i) table(i / 3, i % 3) = v[i];
  return table;
}

std::array<lut, 3> columns_of(const matrix& table) {
  const std::vector<double> x = linspace(0.0, 1.0, table.rows());
  return {makelut_nostat(x, table.col(0)), makelut_nostat(x, table.col(1)), makelut_nostat(x, table.col(2))};
}

vec3 look_up(const std::array<lut, 3>& tables, const vec3& u) {
  vec3 out;
  for (std::size_t c = 0; c < 3; ++c) out[c] = interp(tables[c], std::clamp(u[c], 0.0, 1.0));
  return out;
}

}  // namespace

loaded_tables load_tables(const std::string& folder) {
  constexpr std::array<double, 2> ends{0, 1};
  const std::array<lut, 3> identity = columns_of(in_all_channels(ends));
  loaded_tables tables{identity, columns_of(rows_in(folder + "/postLUT.txt")), {}};
  for (std::size_t c = 0; c < 3; ++c) tables.mix(c, c) = 1;
  if (!std::filesystem::exists(folder + "/preLUT.txt") || !std::filesystem::exists(folder + "/matrix.txt"))
    return tables;
  tables.pre = columns_of(rows_in(folder + "/preLUT.txt"));
  const matrix mix = rows_in(folder + "/matrix.txt");
  for (std::size_t i = 0; i < 3; ++i)
    for (std::size_t j = 0; j < 3; ++j) tables.mix(i, j) = mix(i, j);
  return tables;
}

vec3 through(const loaded_tables& tables, const vec3& drive) {
  const vec3 out = look_up(tables.post, tables.mix * look_up(tables.pre, drive));
  return {{std::clamp(out[0], 0.0, 1.0), std::clamp(out[1], 0.0, 1.0), std::clamp(out[2], 0.0, 1.0)}};
}

}  // namespace corvantile
