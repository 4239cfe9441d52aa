#pragma once
// Whether measurements can be trusted: figures, and what they mean in words.

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "corvantile/appraisal/accuracy.hpp"
#include "corvantile/appraisal/gamut.hpp"
#include "corvantile/appraisal/ramp_figures.hpp"
#include "corvantile/job/finding.hpp"
#include "corvantile/monitor/measurements.hpp"
#include "corvantile/readings/provenance.hpp"

namespace corvantile {

/// What `check_measurements` finds out. Spreads are fractions, 0.01 being 1 %.
struct quality {
  bool derived_ramps = false;
  double additivity = 0;   ///< Y of the three full primaries over that of white, each less the dark, less 1
  double dark_spread = 0;  ///< largest less smallest Y among readings at zero drive, over the white's
  std::optional<double> repeat_spread;  ///< of the worst repeated patch of the ramps; absent where none is known
  accuracy_figures accuracy;
  noise_figures noise;
  std::array<double, 4> wandering{};  ///< of white, red, green, blue: see `wandering_of`
  vec3 dark, white;                   ///< X, Y, Z
  std::array<vec3, 3> primaries;      ///< X, Y, Z of full red, green, blue less the dark, as measured
  double contrast = 0;                ///< Y of white over that of the dark; infinite where that is not above 0
  vec2 white_xy;
  double white_cct = 0;       ///< kelvin
  double white_from_d65 = 0;  ///< distance in CIE 1976 u'v'
  std::array<gamut_comparison, 4> gamut;
  int numsegs = 0;                ///< see `largest_numsegs`
  std::vector<finding> warnings;  ///< what a job with these measurements would warn of before it solves
  provenance known;               ///< as given
  std::vector<finding> findings;  ///< worst first
};

/// Judges `samples`, of which `known` tells what its rows cannot. The model has 5 pieces.
/// Throws `fault::content` where the samples give no model.
quality check_measurements(const measurements& samples, const provenance& known = {});

/// The findings that follow from the figures of `q`, worst first: what `check_measurements` ends with.
std::vector<finding> findings_of(const quality& q);

}  // namespace corvantile
