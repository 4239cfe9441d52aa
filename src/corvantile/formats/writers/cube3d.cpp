#include "corvantile/formats/writers/cube3d.hpp"

#include <cmath>

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

}  // namespace corvantile
