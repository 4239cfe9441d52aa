#include "formats/writers/cal.hpp"

#include <algorithm>

#include "formats/writers/text_form.hpp"

namespace corvantile {

std::string cal_file(const table_set& tables, const description& about) {
  const matrix& table = require_one_table("cal", tables);
  std::string out =
      "CAL    \n\nDESCRIPTOR \"Argyll Device Calibration Curves\"\nORIGINATOR \"Corvantile\"\nCREATED \"" +
      date_text(about.created) + "\"\n" + comment_lines(about, "#") +
      "DEVICE_CLASS \"DISPLAY\"\nCOLOR_REP \"RGB\"\n\nNUMBER_OF_FIELDS 4\nBEGIN_DATA_FORMAT\n"
      "RGB_I RGB_R RGB_G RGB_B\nEND_DATA_FORMAT\n\nNUMBER_OF_SETS ";
  append_integer_text(out, table.rows());
  out += "\nBEGIN_DATA\n";
  const std::vector<double> axis = linspace(0.0, 1.0, table.rows());
  for (std::size_t i = 0; i < table.rows(); ++i) {
    append_number(out, axis[i]);
    out += ' ';
    vec3 row = row3(table, i);
    for (double& v : row.v) v = std::clamp(v, 0.0, 1.0);
    append_row(out, row);
  }
  return out + "END_DATA\n";
}

}  // namespace corvantile
