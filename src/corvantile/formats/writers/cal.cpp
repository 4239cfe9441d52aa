#include "corvantile/formats/writers/cal.hpp"

#include <algorithm>
#include <span>

#include "corvantile/formats/writers/text_form.hpp"

namespace corvantile {
namespace {

// One row for each input; outputs are clamped to 0..1.
std::string cal_text(std::span<const double> inputs, const matrix& outputs, const description& about) {
  std::string out = fmt::format(
      "CAL    \n\nDESCRIPTOR \"Argyll Device Calibration Curves\"\nORIGINATOR \"Corvantile\"\nCREATED \"{}\"\n{}"
      "DEVICE_CLASS \"DISPLAY\"\nCOLOR_REP \"RGB\"\n\nNUMBER_OF_FIELDS 4\nBEGIN_DATA_FORMAT\n"
      "RGB_I RGB_R RGB_G RGB_B\nEND_DATA_FORMAT\n\nNUMBER_OF_SETS {}\nBEGIN_DATA\n",
      date_text(about.created), comment_lines(about, "#"), inputs.size());
  for (std::size_t i = 0; i < inputs.size(); ++i) {
    vec3 row = row3(outputs, i);
    for (double& v : row.v) v = std::clamp(v, 0.0, 1.0);
    append(out, "{:.9g} ", inputs[i]);
    append_row(out, row);
  }
  return out + "END_DATA\n";
}

}  // namespace

std::string cal_file(const device_tables& tables, const description& about) {
  const matrix& table = require_one_table("cal", tables);
  return cal_text(linspace(0.0, 1.0, table.rows()), table, about);
}

std::string calibration_file(const std::array<lut, 3>& curves, const description& about) {
  const std::vector<double>& inputs = curves[0].x;
  matrix outputs(inputs.size(), 3);
  for (std::size_t c = 0; c < 3; ++c) std::ranges::transform(inputs, outputs.col(c).begin(), interpolator(curves[c]));
  return cal_text(inputs, outputs, about);
}

}  // namespace corvantile
