#include "corvantile/formats/writers/cube.hpp"

#include "corvantile/formats/writers/text_form.hpp"

namespace corvantile {

std::string cube_file(const device_tables& tables, const description& about) {
  const matrix& table = require_one_table("cube", tables);
  require_count("cube", "rows", table.rows(), 2, 65536);
  std::string out = fmt::format("TITLE {}\n{}LUT_1D_SIZE {}\nDOMAIN_MIN 0.0 0.0 0.0\nDOMAIN_MAX 1.0 1.0 1.0\n",
                                plain_quoted(about.title), comment_lines_only(about, "#"), table.rows());
  append_rows(out, table);
  return out;
}

}  // namespace corvantile
