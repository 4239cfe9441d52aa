#include "corvantile/documents/point_list.hpp"

#include <cstdint>

#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/number_scanner.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {

std::vector<std::vector<double>> parse_points(const std::string& name, std::string_view text,
                                              std::span<const std::string_view> columns) {
  using result = number_scanner::result;
  number_scanner numbers(text);
  std::int64_t n = 0;
  if (numbers.next(n) != result::number) refuse_content(name, numbers.problem("the number of points"));
  if (n < 2) refuse_content(name, "the number of points is " + std::to_string(n) + ", expected at least 2");
  // Even with repeat counts, a point takes more than one character.
  if (n > static_cast<std::int64_t>(text.size()))
    refuse_content(name, std::to_string(n) + " points are more than the file can hold");

  std::vector<std::vector<double>> points(columns.size());
  for (std::int64_t i = 1; i <= n; ++i) {
    for (std::size_t c = 0; c < columns.size(); ++c) {
      double v = 0;
      if (numbers.next(v) != result::number)
        refuse_content(name, numbers.problem(std::string(columns[c]) + " of point " + std::to_string(i)));
      points[c].push_back(v);
    }
  }
  return points;
}

}  // namespace corvantile
