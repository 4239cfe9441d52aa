#include "corvantile/formats/writers/baked.hpp"

#include <algorithm>
#include <cmath>
#include <fmt/compile.h>

#include "corvantile/formats/writers/quantiser.hpp"
#include "corvantile/formats/writers/text_form.hpp"

namespace corvantile {
namespace {

vec3 mapped(std::string_view format, const drive_map& map, const vec3& drive) {
  const vec3 v = map(drive);
  if (!std::isfinite(v[0] + v[1] + v[2])) refuse_not_finite(format, "a corrected value");
  return v;
}

drive_map map_of(std::string_view format, const device_tables& tables) {
  require_bakeable(format, tables);
  return [&](const vec3& drive) { return corrected(tables, drive); };
}

}  // namespace

std::string cube3d_file(const drive_map& map, std::size_t size, const description& about) {
  require_count("cube3d", "size", size, 2, 256);
  std::string out = fmt::format(
      "TITLE {}\n{}# Baked: exact at the grid's points only.\nLUT_3D_SIZE {}\n"
      "DOMAIN_MIN 0.0 0.0 0.0\nDOMAIN_MAX 1.0 1.0 1.0\n",
      plain_quoted(about.title), comment_lines_only(about, "#"), size);
  out.reserve(out.size() + size * size * size * 33);
  const std::vector<double> grid = linspace(0.0, 1.0, size);
  for (const double b : grid)
    for (const double g : grid)
      for (const double r : grid) append_row(out, mapped("cube3d", map, {{r, g, b}}));
  return out;
}

std::string cube3d_file(const device_tables& tables, std::size_t size, const description& about) {
  return cube3d_file(map_of("cube3d", tables), size, about);
}

std::string threedl_file(const drive_map& map, std::size_t size, const description& about) {
  require_count("3dl", "size", size, 4, 129);
  const std::vector<double> grid = linspace(0.0, 1.0, size);
  std::string out = comment_lines(about, "#");
  for (std::size_t i = 0; i < size; ++i) append(out, "{}{}", std::round(grid[i] * 1023), i + 1 < size ? ' ' : '\n');
  quantiser code(12);
  std::uint64_t largest = 0;
  for (const double r : grid)
    for (const double g : grid)
      for (const double b : grid) {
        const vec3 v = mapped("3dl", map, {{r, g, b}});
        const std::uint64_t codes[] = {code(v[0]), code(v[1]), code(v[2])};
        fmt::format_to(std::back_inserter(out), FMT_COMPILE("{} {} {}\n"), codes[0], codes[1], codes[2]);
        largest = std::max({largest, codes[0], codes[1], codes[2]});
      }
  if (largest < 2048) {
    refuse_format("3dl",
                  "no value reaches half of full drive, so readers would take the file for one of fewer bits; take "
                  "cube3d");
  }
  return out;
}

std::string threedl_file(const device_tables& tables, std::size_t size, const description& about) {
  return threedl_file(map_of("3dl", tables), size, about);
}

}  // namespace corvantile
