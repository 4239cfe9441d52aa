#include "corvantile/documents/point_files.hpp"

#include <array>
#include <cstdint>
#include <utility>
#include <vector>

#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/file_input.hpp"
#include "corvantile/utils/number_scanner.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {
namespace {

// The points, a vector for each of their numbers. `numbers_of_a_point` are the names of these in messages.
template <std::size_t n>
std::array<std::vector<double>, n> parse_points(const std::string& name, std::string_view text,
                                                const std::array<std::string_view, n>& numbers_of_a_point) {
  using result = number_scanner::result;
  number_scanner numbers(text);
  std::int64_t count = 0;
  if (numbers.next(count) != result::number) refuse_content(name, numbers.problem("the number of points"));
  if (count < 2) refuse_content(name, "the number of points is " + std::to_string(count) + ", expected at least 2");
  // Even with repeat counts, a point takes more than one character.
  if (count > static_cast<std::int64_t>(text.size()))
    refuse_content(name, std::to_string(count) + " points are more than the file can hold");

  std::array<std::vector<double>, n> points;
  for (std::int64_t i = 1; i <= count; ++i) {
    for (std::size_t c = 0; c < n; ++c) {
      double v = 0;
      if (numbers.next(v) != result::number)
        refuse_content(name, numbers.problem(std::string(numbers_of_a_point[c]) + " of point " + std::to_string(i)));
      points[c].push_back(v);
    }
  }
  return points;
}

}  // namespace

std::optional<tone_samples> load_tone_samples(const std::string& name) {
  const std::optional<std::string> text = read_file(name);
  if (!text) return std::nullopt;
  return parse_tone_samples(name, *text);
}

tone_samples parse_tone_samples(const std::string& name, std::string_view text) {
  auto [drive, luminance] = parse_points<2>(name, text, {"the drive value", "the luminance"});
  return {.name = name, .drive = std::move(drive), .luminance = std::move(luminance)};
}

gray_factors load_gray_factors(const std::string& name) {
  const std::optional<std::string> text = read_file(name);
  if (!text) throw failure(fault::content, "Cannot open grayfile " + printable(name));
  return parse_gray_factors(name, *text);
}

gray_factors parse_gray_factors(const std::string& name, std::string_view text) {
  const auto [drive, x, y, z] =
      parse_points<4>(name, text, {"the drive value", "the factor of X", "the factor of Y", "the factor of Z"});
  std::vector<vec3> factor(drive.size());
  for (std::size_t i = 0; i < factor.size(); ++i) factor[i] = {{x[i], y[i], z[i]}};
  return make_gray_factors(name, drive, factor);
}

std::string gray_factors_text(const gray_factors& factors) {
  const std::vector<double>& drive = factors.xyz[0].x;
  std::string text = std::to_string(drive.size()) + '\n';
  for (std::size_t i = 0; i < drive.size(); ++i) {
    text += shortest(drive[i]);
    for (const lut& f : factors.xyz) text += free_format(f.y[i]);
    text += '\n';
  }
  return text;
}

}  // namespace corvantile
