#include "driver/gray_factors_file.hpp"

#include <cstdint>
#include <optional>
#include <vector>

#include "utils/failure.hpp"
#include "utils/text.hpp"

namespace corvantile {

gray_factors load_gray_factors(const std::string& name) {
  const std::optional<std::string> text = read_file(name);
  if (!text) throw failure(fault::content, "Cannot open grayfile " + printable(name));
  return parse_gray_factors(name, *text);
}

gray_factors parse_gray_factors(const std::string& name, std::string_view text) {
  using result = number_scanner::result;
  number_scanner numbers(text);
  std::int64_t n = 0;
  if (numbers.next(n) != result::number) refuse_content(name, numbers.problem("the number of points"));
  // Even with repeat counts, a point takes more than two characters.
  if (n > static_cast<std::int64_t>(text.size()))
    refuse_content(name, std::to_string(n) + " points are more than the file can hold");
  std::vector<double> drive;
  std::vector<vec3> factor;
  for (std::int64_t i = 1; i <= n; ++i) {
    double d = 0;
    vec3 f;
    for (double* v : {&d, &f[0], &f[1], &f[2]}) {
      if (numbers.next(*v) == result::number) continue;
      refuse_content(name, numbers.problem("a drive value and three factors of point " + std::to_string(i)));
    }
    drive.push_back(d);
    factor.push_back(f);
  }
  return make_gray_factors(name, drive, factor);
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
