#include "corvantile/documents/gamma_file.hpp"

#include <array>
#include <utility>
#include <vector>

#include "corvantile/documents/point_list.hpp"
#include "corvantile/utils/file_input.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {

std::optional<tone_samples> load_tone_samples(const std::string& name) {
  const std::optional<std::string> text = read_file(name);
  if (!text) return std::nullopt;
  return parse_tone_samples(name, *text);
}

tone_samples parse_tone_samples(const std::string& name, std::string_view text) {
  constexpr std::array<std::string_view, 2> columns{"the drive value", "the luminance"};
  std::vector<std::vector<double>> points = parse_points(name, text, columns);
  return {.name = name, .drive = std::move(points[0]), .luminance = std::move(points[1])};
}

}  // namespace corvantile
