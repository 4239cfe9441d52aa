#include "corvantile/colour/gray_factors.hpp"

#include <algorithm>
#include <utility>
#include <vector>

#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {
namespace {

// A model that is off by more than these factors belongs to another display.
constexpr double least = 0.1;
constexpr double most = 10;

void require_point(const std::string& name, std::span<const double> drive, const vec3& factor, std::size_t i) {
  const std::string point = "point " + std::to_string(i + 1);
  if (i == 0 && drive[0] != 0) refuse_content(name, "the first drive value is" + free_format(drive[0]) + ", not 0");
  if (i > 0 && !(drive[i] > drive[i - 1])) {
    refuse_content(name, "the drive value of " + point + " is" + free_format(drive[i]) + ", expected more than" +
                             free_format(drive[i - 1]));
  }
  for (const double v : factor.v) {
    if (v >= least && v <= most) continue;
    refuse_content(name, "a factor of " + point + " is" + free_format(v) + ", expected" + free_format(least) + " to" +
                             free_format(most));
  }
}

}  // namespace

gray_factors make_gray_factors(const std::string& name, std::span<const double> drive, std::span<const vec3> factor) {
  if (drive.size() < 2 || drive.size() != factor.size()) refuse_content(name, "gray factors need at least 2 points");
  for (std::size_t i = 0; i < drive.size(); ++i) require_point(name, drive, factor[i], i);
  std::vector<double> x(drive.begin(), drive.end());
  for (double& v : x) v /= drive.back();
  gray_factors made;
  for (std::size_t k = 0; k < 3; ++k) {
    std::vector<double> y(factor.size());
    std::ranges::transform(factor, y.begin(), [k](const vec3& v) { return v[k]; });
    made.xyz[k] = {x, std::move(y)};
  }
  return made;
}

vec3 factors_at(const gray_factors& f, double drive) {
  if (f.empty()) return {{1, 1, 1}};
  return {{interp(f.xyz[0], drive), interp(f.xyz[1], drive), interp(f.xyz[2], drive)}};
}

vec3 expected(const gray_factors& f, const vec3& drive, const vec3& xyz, const vec3& dark) {
  if (f.empty()) return xyz;
  const auto [least_drive, most_drive] = std::ranges::minmax(drive.v);
  const double grayness = most_drive > 0 ? least_drive / most_drive : 1;
  const vec3 factor = factors_at(f, most_drive);
  vec3 out;
  for (std::size_t k = 0; k < 3; ++k) out[k] = (xyz[k] - dark[k]) / (1 + grayness * (factor[k] - 1)) + dark[k];
  return out;
}

}  // namespace corvantile
