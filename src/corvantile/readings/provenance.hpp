#pragma once
// What readings, and the ramps made of them, tell about where measurements come from.

#include "corvantile/documents/measurement_file.hpp"
#include "corvantile/readings/ramps.hpp"
#include "corvantile/readings/readings.hpp"

namespace corvantile {

provenance provenance_of(const readings& all, const ramp_choice& choice);

}  // namespace corvantile
