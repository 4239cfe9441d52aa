#include "corvantile/readings/prediction.hpp"

#include <algorithm>
#include <cmath>

#include "corvantile/colour/color_metrics.hpp"

namespace corvantile {

difference_figures summarize(std::vector<double> differences) {
  std::erase_if(differences, [](double d) { return !std::isfinite(d); });
  difference_figures f;
  f.n = differences.size();
  if (f.n == 0) return f;
  std::ranges::sort(differences);
  for (const double d : differences) f.mean += d;
  f.mean /= static_cast<double>(f.n);
  f.p95 = differences[(95 * f.n + 99) / 100 - 1];  // rank 0.95 n, rounded up, counted from 1
  f.max = differences.back();
  return f;
}

bool near_gray(const vec3& drive) {
  const auto [low, high] = std::ranges::minmax(drive.v);
  return high - low <= 0.15 + 1e-9;
}

std::vector<prediction> predict(const monitor& mon, const matrix& samples, const vec3& white) {
  std::vector<prediction> predictions(samples.rows());
  for (std::size_t i = 0; i < predictions.size(); ++i) {
    prediction& p = predictions[i];
    p.drive = row3(samples, i);
    p.measured = {{samples(i, 3), samples(i, 4), samples(i, 5)}};
    p.predicted = inp2out_vec(mon, p.drive);
    p.difference = deltae2000_vec(xyz2lab_vec(p.measured, white), xyz2lab_vec(p.predicted, white));
  }
  return predictions;
}

prediction_figures summarize(const std::vector<prediction>& predictions) {
  std::vector<double> all, gray;
  for (const prediction& p : predictions) {
    all.push_back(p.difference);
    if (near_gray(p.drive)) gray.push_back(p.difference);
  }
  return {summarize(std::move(all)), summarize(std::move(gray))};
}

}  // namespace corvantile
