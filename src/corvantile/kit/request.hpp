#pragma once
// Turns what people ask for by name (sRGB, D65, BT.1886) into the settings of a job.

#include <string>
#include <vector>

#include "corvantile/kit/devices.hpp"
#include "corvantile/kit/job.hpp"
#include "corvantile/monitor/measurements.hpp"

namespace corvantile::kit {

/// The words of the command line.
struct request {
  std::string target = "srgb";  ///< native, srgb, rec709, display-p3, adobe-rgb, bt2020
  std::string gamma = {};       ///< an exponent, srgb, bt1886, lstar, or a gamma file; empty: 2.2, or the device's
  std::string white = {};       ///< native, d65, d50, kelvin, or x,y; empty: the target's own
  device for_device = device::all;
  /// Of primaries out of reach. Used if there are two tables.
  corvantile::gamut_mapping gamut_mapping = corvantile::gamut_mapping::clip;
};

/// The names of all targets.
std::vector<std::string> target_names();

/// Chooses mode and settings, with reasons. The result has everything but the text of the measurements. The black of
/// BT.1886 and the native white come from `samples`. Throws `fault::setting` if the request is not valid.
job_inputs inputs_for(const request& asked, const measurements& samples);

/// The text of a gamma file with 257 even drives. The curve is "srgb" (IEC 61966-2-1), "lstar" (CIE 1976 L*),
/// "bt1886" (ITU-R BT.1886, for these luminances of white and black), or the power law of an exponent such as "2.4".
std::string gamma_file_of(const std::string& curve, double white, double black);

}  // namespace corvantile::kit
