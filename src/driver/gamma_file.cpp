#include "driver/gamma_file.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

#include "utils/text.hpp"

namespace corvantile {

[[noreturn]] static void bad_content(const gamma_file& file, const std::string& what) {
  throw stop_run(exit_status::bad_content, file.name + ": " + what);
}

static void require_rise(const gamma_file& file, const std::vector<double>& p) {
  for (std::size_t i = 1; i < p.size(); ++i) {
    if (p[i] > p[i - 1]) continue;
    bad_content(file, "the drive value of point " + std::to_string(i + 1) + " is" + free_format(p[i]) +
                          ", expected more than" + free_format(p[i - 1]));
  }
}

std::optional<gamma_file> open_gamma_file(const std::string& name) {
  std::optional<std::string> text = read_file(name);
  if (!text) return std::nullopt;
  return gamma_file{name, std::move(*text)};
}

gamma_curve read_gamma_curve(const gamma_file& file) {
  using result = number_scanner::result;
  number_scanner numbers(file.text);
  std::int64_t n = 0;
  if (numbers.next(n) != result::number) bad_content(file, numbers.problem("the number of points"));
  if (n < 2) bad_content(file, "the number of points is " + std::to_string(n) + ", expected at least 2");
  // Even with repeat counts, a pair takes more than one character.
  if (n > static_cast<std::int64_t>(file.text.size())) {
    bad_content(file, std::to_string(n) + " points are more than the file can hold");
  }

  gamma_curve curve;
  curve.p.resize(static_cast<std::size_t>(n));
  curve.L.resize(curve.p.size());
  auto& [p, L, start_was_moved] = curve;
  for (std::size_t i = 0; i < p.size(); ++i) {
    const std::string point = "point " + std::to_string(i + 1);
    if (numbers.next(p[i]) != result::number) bad_content(file, numbers.problem("the drive value of " + point));
    if (numbers.next(L[i]) != result::number) bad_content(file, numbers.problem("the luminance of " + point));
    if (!std::isfinite(p[i]) || !std::isfinite(L[i])) bad_content(file, point + " is not finite");
  }

  const double black = L.front();
  for (double& v : L) v -= black;
  const double range = L.back();
  if (range == 0 || !std::isfinite(range)) {
    bad_content(file,
                "the last luminance less the first is" + free_format(range) + ", which is nothing to normalise by");
  }
  for (double& v : L) v /= range;
  require_rise(file, p);
  start_was_moved = p.front() != 0;
  p.front() = 0;
  require_rise(file, p);  // no longer so where a drive value after the first is below 0
  const double full = p.back();
  for (double& v : p) v /= full;
  return curve;
}

lut smooth_gamma_curve(const gamma_file& file, const gamma_curve& curve, int numsegs) {
  const std::vector<double> L = iba(curve.p, curve.L, numsegs);
  if (!std::ranges::all_of(L, [](double v) { return std::isfinite(v); })) {
    bad_content(file, "no rising curve fits the points");
  }
  return makelut_nostat(curve.p, L);
}

}  // namespace corvantile
