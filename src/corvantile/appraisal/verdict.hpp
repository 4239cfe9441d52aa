#pragma once
// How good a correction is, for grays and for colours: what to expect of it, against no correction at all.

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "corvantile/appraisal/check.hpp"
#include "corvantile/appraisal/scene.hpp"
#include "corvantile/numerics/matrix.hpp"
#include "corvantile/readings/prediction.hpp"

namespace corvantile {

enum class patch_kind {
  gray,   ///< the 256 grays of 8 bits
  chart,  ///< the 24 patches of the classic colour chart
  sweep,  ///< six hues at 25, 50, 75 and 100 % of their saturation
  cube    ///< 300 drives spread over the cube
};

/// A patch, and its CIEDE2000 from the target by the model: uncorrected at the target's luminance, and behind the
/// correction.
struct judged_patch {
  patch_kind kind = patch_kind::gray;
  std::string name;  ///< "foliage", "red 75 %"; empty for grays and the cube
  vec3 drive;
  double before = 0, after = 0;
};

/// The colours and grays that every correction is judged by. Needs the target for the sweeps: a share of the way from
/// the white to the hue's corner in u'v', at the corner's luminance.
std::vector<judged_patch> test_set(const scene& sc);

/// What the model's error on patches that it has not seen does to a prediction.
struct uncertainty {
  double mean = 0, p95 = 0;  ///< CIEDE2000
};

enum class trend { better, as_before, worse };

/// One group of patches: grays or colours. Differences are CIEDE2000.
struct group_verdict {
  difference_figures before;          ///< uncorrected, by the model
  difference_figures own;             ///< behind the correction, by the model: what the solution itself leaves
  std::optional<uncertainty> unseen;  ///< of the model; absent if no patch tells
  double expected = 0;                ///< mean of sqrt(own^2 + unseen.mean^2) over the patches
  double expected_p95 = 0;            ///< 95 % of sqrt(own^2 + unseen.p95^2)
  /// Better if the model gains more than half of its own uncertainty, worse if it loses more than all of it.
  trend against_before = trend::as_before;
};

struct verdict {
  group_verdict gray, colours;
  double coverage_before = 0, coverage_after = 0;  ///< of the target's triangle, or of sRGB's if there is none, 0..1
  double luminance_kept = 0;                       ///< of the uncorrected white, as a fraction
  std::vector<judged_patch> patches;

  /// Grays or colours get better, and neither gets worse.
  bool better() const;
};

/// Judges a correction. `accuracy` is that of the model on the measurements; `derived_ramps` whether its gray ramp
/// made its colour ramps, and so was seen.
verdict judge(const subject& s, const accuracy_figures& accuracy, bool derived_ramps);

}  // namespace corvantile
