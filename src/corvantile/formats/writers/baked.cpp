#include "corvantile/formats/writers/baked.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "corvantile/formats/writers/quantiser.hpp"
#include "corvantile/formats/writers/text_form.hpp"
#include "corvantile/utils/failure.hpp"

namespace corvantile {

std::string cube3d_file(const drive_map& corrected, std::size_t size, const description& about) {
  require_count("cube3d", "size", size, 2, 256);
  std::string out = "TITLE " + plain_quoted(about.title) + "\n" + comment_lines_only(about, "#") +
                    "# Baked: exact at the grid's points only.\nLUT_3D_SIZE ";
  append_integer_text(out, size);
  out += "\nDOMAIN_MIN 0.0 0.0 0.0\nDOMAIN_MAX 1.0 1.0 1.0\n";
  out.reserve(out.size() + size * size * size * 33);
  const std::vector<double> grid = linspace(0.0, 1.0, size);
  for (const double b : grid)
    for (const double g : grid)
      for (const double r : grid) {
        const vec3 v = corrected({{r, g, b}});
        if (!std::isfinite(v[0] + v[1] + v[2]))
          throw failure(fault::not_finite, "Format cube3d: a corrected value is not a finite number");
        append_row(out, v);
      }
  return out;
}

std::string cube3d_file(const device_tables& tables, std::size_t size, const description& about) {
  require_bakeable("cube3d", tables);
  return cube3d_file([&](const vec3& drive) { return corrected(tables, drive); }, size, about);
}

std::string threedl_file(const drive_map& corrected, std::size_t size, const description& about) {
  require_count("3dl", "size", size, 4, 129);
  const std::vector<double> grid = linspace(0.0, 1.0, size);
  std::string out = comment_lines(about, "#");
  for (std::size_t i = 0; i < size; ++i) {
    append_integer_text(out, static_cast<std::size_t>(std::round(grid[i] * 1023)));
    out += i + 1 < size ? ' ' : '\n';
  }
  quantiser code(12);
  std::uint64_t largest = 0;
  for (const double r : grid)
    for (const double g : grid)
      for (const double b : grid) {
        const vec3 v = corrected({{r, g, b}});
        for (std::size_t c = 0; c < 3; ++c) {
          if (!std::isfinite(v[c]))
            throw failure(fault::not_finite, "Format 3dl: a corrected value is not a finite number");
          const std::uint64_t n = code(v[c]);
          largest = std::max(largest, n);
          append_integer_text(out, n);
          out += c < 2 ? ' ' : '\n';
        }
      }
  if (largest < 2048)
    refuse_format("3dl",
                  "no value reaches half of full drive, and readers would take the file for one of "
                  "fewer bits; take cube3d");
  return out;
}

std::string threedl_file(const device_tables& tables, std::size_t size, const description& about) {
  require_bakeable("3dl", tables);
  return threedl_file([&](const vec3& drive) { return corrected(tables, drive); }, size, about);
}

}  // namespace corvantile
