#include "corvantile/measuring/rereading.hpp"

#include <algorithm>
#include <cmath>
#include <fmt/core.h>
#include <vector>

namespace corvantile::measuring {
namespace {

bool within(double tolerance, const vec3& a, const vec3& b, double rest) {
  for (std::size_t c = 0; c < 3; ++c) {
    const double size = std::max({std::abs(b[c]), std::abs(b[1]), std::abs(a[c])});
    if (!(std::abs(a[c] - b[c]) <= tolerance * size + rest)) return false;
  }
  return true;
}

bool any_two_agree(std::span<const vec3> taken, double tolerance, double rest) {
  for (std::size_t i = 0; i < taken.size(); ++i)
    for (std::size_t k = 0; k < i; ++k)
      if (within(tolerance, taken[i], taken[k], rest)) return true;
  return false;
}

}  // namespace

std::string why_again(std::span<const vec3> taken, const std::optional<vec3>& expected, double white,
                      const reread_rule& rule) {
  const double rest = rule.floor * white;
  const bool dark = median_of(taken)[1] < rule.dark * white || (expected && (*expected)[1] < rule.dark * white);
  if (taken.size() == 1) {
    if (!expected) return dark ? "dark, read twice" : "";
    if (within(dark ? rule.scatter : rule.implausible, taken[0], *expected, rest)) return "";
    return fmt::format("Y {:.4g}, expected {:.4g}", taken[0][1], (*expected)[1]);
  }
  if (taken.size() >= (dark ? rule.most_dark : rule.most)) return "";
  return any_two_agree(taken, dark ? rule.scatter : rule.agreement, rest) ? "" : "the readings scatter";
}

vec3 median_of(std::span<const vec3> taken) {
  vec3 middle;
  std::vector<double> values(taken.size());
  for (std::size_t c = 0; c < 3; ++c) {
    std::ranges::transform(taken, values.begin(), [c](const vec3& v) { return v[c]; });
    std::ranges::sort(values);
    middle[c] = (values[(values.size() - 1) / 2] + values[values.size() / 2]) / 2;
  }
  return middle;
}

}  // namespace corvantile::measuring
