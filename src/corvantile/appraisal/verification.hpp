#pragma once
// Readings with the tables loaded, compared with the target and with the prediction. Units as in job_figures.hpp.

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
  too_mild,       ///< once or not: the tables change too little to tell
  another_white,  ///< once, but with another white than predicted
  none,
  twice,
  unclear
};

/// Mean differences of the readings from the prediction for each way in which the tables may have been loaded.
struct load_distances {
  double once = unknown, none = unknown, twice = unknown, other_white = unknown;
};

/// Differences from the target along one test ramp.
struct verified_ramp {
  std::vector<double> drive, difference;
};

/// Readings are scaled so that the brightest full white is as bright as predicted.
struct verification {
  load_state loaded = load_state::unclear;
  load_distances distances;
  difference_summary grays, all;       ///< from the target
  difference_summary from_prediction;  ///< of all patches
  white_figures white;                 ///< as it was read, not scaled
  gray_curve gray;
  chromaticity_table corners;  ///< primaries less the dark, and white; NaN if not read
  std::array<verified_ramp, test_ramps.size()> ramps;
  std::vector<verified_patch> patches;

  /// Luminance of white over the predicted one, less 1; absent if the two measurements are in different units.
  std::optional<double> white_change;
  bool calibration_appeared = false;  ///< a video calibration was in effect now, but not in the first measurement
  bool calibration_vanished = false;  ///< the other way round
};

/// Judges `after`, which was read with the tables loaded: once, twice, or by mistake not at all. `first` is what is
/// known about the measurement that the correction was made from.
verification verify(const subject& s, const readings& after, const provenance& first = {});

}  // namespace corvantile
