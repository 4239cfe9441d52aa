#include "corvantile/numerics/local_line.hpp"

#include <algorithm>
#include <cmath>

namespace corvantile {
namespace {

// The distance at which weights reach 0.
double widened(const std::vector<double>& x, double at, double reach) {
  std::vector<double> distance(x.size());
  std::ranges::transform(x, distance.begin(), [at](double v) { return std::abs(v - at); });
  const auto third = distance.begin() + static_cast<std::ptrdiff_t>(std::min<std::size_t>(x.size(), 3)) - 1;
  std::ranges::nth_element(distance, third);
  return std::max(reach, 1.001 * *third);  // so that the third counts
}

}  // namespace

double local_line(const weighted_samples& samples, double at, double reach) {
  const double h = widened(samples.x, at, reach);
  double sw = 0, sx = 0, sy = 0, sxx = 0, sxy = 0;
  for (std::size_t i = 0; i < samples.x.size(); ++i) {
    const double dx = samples.x[i] - at;
    const double t = std::abs(dx) / h;
    if (!(t < 1)) continue;
    const double c = 1 - t * t * t;
    const double w = samples.weight[i] * c * c * c;
    sw += w;
    sx += w * dx;
    sy += w * samples.y[i];
    sxx += w * dx * dx;
    sxy += w * dx * samples.y[i];
  }
  const double spread = sw * sxx - sx * sx;
  constexpr double at_one_place = 1e-12;
  return spread > at_one_place * sw * sw * h * h ? (sxx * sy - sx * sxy) / spread : sy / sw;
}

}  // namespace corvantile
