#pragma once
// From readings to measurements: which rows make the four ramps that a display is fitted from.

#include <optional>
#include <string>

#include "corvantile/monitor/monitor.hpp"
#include "corvantile/readings/patches.hpp"
#include "corvantile/readings/prediction.hpp"

namespace corvantile {

/// Where the red, green and blue ramps come from.
enum class ramp_source {
  measured,  ///< read one by one; the levels that all four ramps share
  derived,   ///< computed from the gray ramp and the full primaries: grays are right by construction
  automatic  ///< whichever predicts unseen patches better
};

/// What `ramps` made of the readings, and why.
struct ramp_choice {
  measurements data;  ///< version 2, drives in percent, shared white and dark; then every other reading
  ramp_source taken = ramp_source::measured;  ///< never `automatic`
  std::string why;                            ///< one clause for people

  std::size_t measured_levels = 0;  ///< levels that all four ramps share, with the dark; 0 if a ramp is missing
  std::size_t gray_levels = 0;      ///< of the gray ramp, with the dark
  double additivity = 0;            ///< Y of the three full primaries over that of white, each less the dark, less 1
  std::size_t repaired = 0;         ///< derived values that fell or were below 0, from noise

  /// Both ways tried on the same unseen patches: those that neither is made of. Absent if there are fewer than 10, if
  /// a measured ramp is missing, or if no model fits. The models have 5 pieces; L*a*b* is taken against the measured
  /// white.
  std::optional<prediction_figures> measured_predicts, derived_predicts;

  repeatability repeated;
  note_list notes;  ///< what was dropped or repaired
};

/// Makes measurements of `all`. Repeated readings of a patch become their mean; readings on no ramp become extra
/// samples. With derived ramps the measured channels are extra samples, too.
///
/// `automatic` compares the mean CIEDE2000 over at least 10 unseen patches: the average of near gray (if there are at
/// least 5) and overall, so that grays count twice. The lower one wins. With fewer unseen patches it takes derived
/// ramps if measured ones are missing or shorter than 9 levels, if the sum of the channels differs from the white by
/// more than 1 %, or if repeats are more than 1 % apart; else measured ones.
///
/// Throws `fault::content`, with what to do, if there is no dark, no gray ramp of at least five levels up to full
/// drive, or a full primary is missing; if the primaries span no gamut; and if `measured` finds fewer than five
/// shared levels.
ramp_choice ramps(const readings& all, ramp_source how);

/// Whether the coloured ramps of `m` were derived from its gray ramp: their tops add up to the white to 13 digits,
/// which readings never do.
bool has_derived_ramps(const measurements& m);

}  // namespace corvantile
