#pragma once
// What was read behind the loaded tables, against the target and against the prediction. Units as in job_figures.hpp.

#include <array>
#include <optional>
#include <vector>

#include "corvantile/appraisal/job_figures.hpp"
#include "corvantile/appraisal/scene.hpp"
#include "corvantile/documents/measurement_file.hpp"
#include "corvantile/readings/readings.hpp"

namespace corvantile {

struct verified_patch {
  vec3 drive;
  vec3 asked, predicted, measured;
  double from_asked = unknown, from_predicted = unknown;
};

/// How the tables seem to have been loaded during the second measurement.
enum class load_state {
  once,
  too_mild,       ///< the tables change so little that nobody can tell
  another_white,  ///< once, but the white is not the predicted one
  none,
  twice,
  unclear
};

/// Mean differences of the readings from what is predicted for the ways in which the tables may have been loaded.
struct load_distances {
  double once = unknown, none = unknown, twice = unknown, other_white = unknown;
};

/// The readings of one test ramp: the differences from the target.
struct verified_ramp {
  std::vector<double> drive, difference;
};

/// X, Y, Z are scaled so that the brightest full white is as bright as predicted.
struct verification {
  load_state loaded = load_state::unclear;
  load_distances distances;
  difference_summary grays, all;       ///< from the target
  difference_summary from_prediction;  ///< of all patches
  white_figures white;                 ///< as it was read, not scaled
  gray_curve gray;
  chromaticity_table corners;  ///< primaries less the dark, and white; not a number if not read
  std::array<verified_ramp, test_ramps.size()> ramps;
  std::vector<verified_patch> patches;

  /// Luminance of white over the predicted one, less 1; absent if the two measurements are in different units.
  std::optional<double> white_change;
  bool calibration_appeared = false;  ///< a video calibration was in effect now, but not in the first measurement
  bool calibration_vanished = false;  ///< and the other way round
};

/// Compares `after`, read behind the loaded correction, with what is predicted for the tables loaded once, twice and
/// not at all. `first` tells of the measurement that the correction was made from.
verification verify(const subject& s, const readings& after, const provenance& first = {});

}  // namespace corvantile
