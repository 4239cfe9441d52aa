#pragma once
// Whether measurements can be trusted: figures, and what they mean in words.

#include <array>
#include <optional>
#include <vector>

#include "corvantile/appraisal/gamut.hpp"
#include "corvantile/appraisal/ramp_figures.hpp"
#include "corvantile/job/finding.hpp"
#include "corvantile/monitor/measurements.hpp"
#include "corvantile/readings/prediction.hpp"
#include "corvantile/readings/provenance.hpp"

namespace corvantile {

/// CIEDE2000 of the model against the samples. L*a*b* is taken against the measured white.
struct accuracy_figures {
  difference_figures unseen;        ///< samples that the model was not fitted to
  difference_figures near_gray;     ///< those of them that are near gray
  difference_figures white_ramp;    ///< the gray ramp, dark included; the model has seen it unless ramps are derived
  std::vector<prediction> patches;  ///< every unseen patch, the worst first
};

/// The figures of measurements. Spreads are fractions: 0.01 is 1 %.
struct quality {
  bool derived_ramps = false;
  double additivity = 0;   ///< Y of the three full primaries over that of white, each less the dark, less 1
  double dark_spread = 0;  ///< largest less smallest Y of the readings at zero drive, over the white's
  std::optional<double> repeat_spread;  ///< of the worst repeated patch of the ramps; absent: not known
  accuracy_figures accuracy;
  noise_figures noise;
  std::array<double, 4> wandering{};  ///< of white, red, green, blue: see `wandering_of`
  vec3 dark, white;                   ///< X, Y, Z
  std::array<vec3, 3> primaries;      ///< X, Y, Z of full red, green, blue less the dark, as measured
  double contrast = 0;                ///< Y of white over that of the dark; infinite if the dark is not above 0
  vec2 white_xy;
  double white_cct = 0;       ///< kelvin
  double white_from_d65 = 0;  ///< distance in CIE 1976 u'v'
  std::array<gamut_comparison, 4> gamut;
  int numsegs = 0;                ///< see `largest_numsegs`
  std::vector<finding> warnings;  ///< those that a job with these measurements has before it solves
  provenance known;               ///< as given
  std::vector<finding> findings;  ///< worst first
};

/// Judges `samples`, with what else is `known` about them. The model has 5 pieces. A sample is unseen if it is not
/// in the four ramps, nor at the drive of a measured one; samples that are not finite do not count.
/// Throws `fault::content` if the samples give no model.
quality check_measurements(const measurements& samples, const provenance& known = {});

/// What the figures of `q` mean, worst first. `check_measurements` puts these into `findings`.
std::vector<finding> findings_of(const quality& q);

}  // namespace corvantile
