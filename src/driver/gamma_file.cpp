#include "driver/gamma_file.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "utils/failure.hpp"
#include "utils/text.hpp"

namespace corvantile {

std::optional<tone_samples> load_tone_samples(const std::string& name) {
  const std::optional<std::string> text = read_file(name);
  if (!text) return std::nullopt;
  return parse_tone_samples(name, *text);
}

tone_samples parse_tone_samples(const std::string& name, std::string_view text) {
  using result = number_scanner::result;
  number_scanner numbers(text);
  std::int64_t n = 0;
  if (numbers.next(n) != result::number) refuse_content(name, numbers.problem("the number of points"));
  if (n < 2) refuse_content(name, "the number of points is " + std::to_string(n) + ", expected at least 2");
  // Even with repeat counts, a pair takes more than one character.
  if (n > static_cast<std::int64_t>(text.size()))
    refuse_content(name, std::to_string(n) + " points are more than the file can hold");

  tone_samples samples{.name = name, .drive = {}, .luminance = {}};
  for (std::int64_t i = 1; i <= n; ++i) {
    const std::string point = "point " + std::to_string(i);
    double p = 0;
    double L = 0;
    if (numbers.next(p) != result::number) refuse_content(name, numbers.problem("the drive value of " + point));
    if (numbers.next(L) != result::number) refuse_content(name, numbers.problem("the luminance of " + point));
    samples.drive.push_back(p);
    samples.luminance.push_back(L);
  }
  return samples;
}

}  // namespace corvantile
