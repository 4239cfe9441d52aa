#include "corvantile/job/tone_samples.hpp"

#include <algorithm>
#include <cmath>

#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {
namespace {

void require_rise(const std::string& name, const std::vector<double>& p) {
  for (std::size_t i = 1; i < p.size(); ++i) {
    if (p[i] > p[i - 1]) continue;
    refuse_content(name, "the drive value of point " + std::to_string(i + 1) + " is" + free_format(p[i]) +
                             ", expected more than" + free_format(p[i - 1]));
  }
}

// Afterwards p rises from 0 to 1 (rounding may make neighbours equal), and L runs from 0 to 1.
void normalise(const std::string& name, std::vector<double>& p, std::vector<double>& L) {
  if (p.size() != L.size() || p.size() < 2) refuse_content(name, "a tone curve needs at least 2 points");
  for (std::size_t i = 0; i < p.size(); ++i) {
    if (std::isfinite(p[i]) && std::isfinite(L[i])) continue;
    refuse_content(name, "point " + std::to_string(i + 1) + " is not finite");
  }
  const double black = L.front();
  for (double& v : L) v -= black;
  const double range = L.back();
  if (range == 0 || !std::isfinite(range)) {
    refuse_content(
        name, "the last luminance less the first is" + free_format(range) + ", which is nothing to normalise by");
  }
  for (double& v : L) v /= range;
  require_rise(name, p);
  p.front() = 0;
  require_rise(name, p);  // fails now if the second drive value was not above 0
  const double full = p.back();
  for (double& v : p) v /= full;
}

}  // namespace

lut tone_curve(const tone_samples& samples, int numsegs) {
  std::vector<double> p = samples.drive;
  std::vector<double> L = samples.luminance;
  normalise(samples.name, p, L);
  L = iba(p, L, numsegs);
  if (!std::ranges::all_of(L, [](double v) { return std::isfinite(v); })) {
    refuse_content(samples.name, "no rising curve fits the points");
  }
  return makelut_nostat(p, L);
}

}  // namespace corvantile
