#include "corvantile/documents/gray_factors_file.hpp"

#include <array>
#include <optional>
#include <vector>

#include "corvantile/documents/point_list.hpp"
#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/file_input.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {

gray_factors load_gray_factors(const std::string& name) {
  const std::optional<std::string> text = read_file(name);
  if (!text) throw failure(fault::content, "Cannot open grayfile " + printable(name));
  return parse_gray_factors(name, *text);
}

gray_factors parse_gray_factors(const std::string& name, std::string_view text) {
  constexpr std::array<std::string_view, 4> columns{"the drive value", "the factor of X", "the factor of Y",
                                                    "the factor of Z"};
  const std::vector<std::vector<double>> points = parse_points(name, text, columns);
  std::vector<vec3> factor(points[0].size());
  for (std::size_t i = 0; i < factor.size(); ++i) factor[i] = {{points[1][i], points[2][i], points[3][i]}};
  return make_gray_factors(name, points[0], factor);
}

std::string gray_factors_text(const gray_factors& factors) {
  const std::vector<double>& drive = factors.xyz[0].x;
  std::string text = std::to_string(drive.size()) + '\n';
  for (std::size_t i = 0; i < drive.size(); ++i) {
    text += free_format(drive[i]).substr(1);
    for (const lut& f : factors.xyz) text += free_format(f.y[i]);
    text += '\n';
  }
  return text;
}

}  // namespace corvantile
