#include "corvantile/formats/writers/threedl.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "corvantile/formats/writers/quantiser.hpp"
#include "corvantile/formats/writers/text_form.hpp"
#include "corvantile/utils/failure.hpp"

namespace corvantile {

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
