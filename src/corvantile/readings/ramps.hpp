#pragma once
// From readings to measurements: which rows make the four ramps that a display is fitted from.

#include <optional>
#include <string>
#include <vector>

#include "corvantile/monitor/monitor.hpp"
#include "corvantile/readings/patches.hpp"
#include "corvantile/readings/prediction.hpp"

namespace corvantile {

/// Where the red, green and blue ramps come from.
enum class ramp_source {
  measured,  ///< read one by one; the levels that all four ramps share
  derived,   ///< computed from the gray ramp and the full primaries: grays are right by construction
  automatic  ///< whichever predicts the patches better that neither of them is made of
};

/// What `ramps` made of the readings, and what that rests on.
struct ramp_choice {
  measurements data;  ///< version 2, drives in percent, shared white and dark; then every other reading
  ramp_source taken = ramp_source::measured;  ///< never `automatic`
  std::string why;                            ///< one clause for people

  std::size_t measured_levels = 0;  ///< levels that all four ramps share, the dark included; 0 where any is missing
  std::size_t gray_levels = 0;      ///< of the gray ramp, the dark included
  double additivity = 0;            ///< Y of the three full primaries over that of white, each less the dark, less 1
  std::size_t repaired = 0;         ///< derived values that noise had made fall or go below 0

  /// Both ways tried on the same patches: those that neither is made of. Absent where there are fewer than 10 such
  /// patches, or no four measured ramps, or no model that fits. The models have 5 pieces; L*a*b* is taken against the
  /// measured white.
  std::optional<prediction_figures> measured_predicts, derived_predicts;

  repeatability repeated;
  std::vector<std::string> notes;  ///< what was dropped or repaired: one sentence each
};

/// Makes measurements of `all`. Repeated readings of a patch become their mean, and readings on no ramp extra
/// samples. With derived ramps the measured channels are among those too.
///
/// `automatic` compares the mean CIEDE2000 over at least 10 unseen patches: the mean of near gray (where there are at
/// least 5) and overall, so that grays count twice; the lower one wins. Without such patches it takes derived ramps
/// where measured ones are missing or shorter than 9 levels, where the channels' sum is off the white by more than
/// 1 %, or repeats lie apart by more than 1 %; else measured ones.
///
/// Throws `fault::content`, with what to do, where there is no dark, no gray ramp of at least five levels up to full
/// drive, or no full primary, or the primaries span no gamut; and where `measured` finds fewer than five shared
/// levels.
ramp_choice ramps(const readings& all, ramp_source how);

/// Whether the coloured ramps of `m` were derived from its gray ramp: their tops add up to the white to 13 digits, as
/// no readings do.
bool has_derived_ramps(const measurements& m);

}  // namespace corvantile
