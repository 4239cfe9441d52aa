#pragma once
// How well a fitted model predicts patches: CIEDE2000 between what it shows and what was measured.

#include <cstddef>
#include <vector>

#include "corvantile/monitor/monitor.hpp"

namespace corvantile {

/// A set of colour differences, CIEDE2000, in four numbers; all 0 for an empty set.
struct difference_figures {
  std::size_t n = 0;
  double mean = 0;
  double p95 = 0;  ///< 95th percentile by the nearest rank: an element of the set
  double max = 0;
  friend bool operator==(const difference_figures&, const difference_figures&) = default;
};

/// Leaves out differences that are not finite, as wild samples give.
difference_figures summarize(std::vector<double> differences);

/// One patch, predicted.
struct prediction {
  vec3 drive;      ///< 0..1
  vec3 measured;   ///< X, Y, Z
  vec3 predicted;  ///< X, Y, Z in the same unit
  double difference = 0;
};

/// Whether a drive is near the gray axis: its channels are at most 0.15 of full drive apart.
bool near_gray(const vec3& drive);

/// Predicts each row of `samples` (n x 6: R, G, B from 0 to 1, X, Y, Z). L*a*b* is taken against `white`.
std::vector<prediction> predict(const monitor& mon, const matrix& samples, const vec3& white);

/// Figures of a set of predictions, and of its part near gray.
struct prediction_figures {
  difference_figures all;
  difference_figures near_gray;
};

prediction_figures summarize(const std::vector<prediction>& predictions);

}  // namespace corvantile
