#pragma once
// What people ask for by name (sRGB, D65, BT.1886) as settings of a job.

#include <string>
#include <vector>

#include "corvantile/kit/devices.hpp"
#include "corvantile/kit/job.hpp"
#include "corvantile/monitor/measurements.hpp"

namespace corvantile::kit {

/// As the command line has it.
struct request {
  std::string target = "srgb";  ///< native, srgb, rec709, display-p3, adobe-rgb, bt2020
  std::string gamma = {};       ///< an exponent, srgb, bt1886, lstar, or a gamma file; empty: 2.2, or the device's
  std::string white = {};       ///< native, d65, d50, kelvin, or x,y; empty: the target's own
  device for_device = device::all;
};

/// The names that a target may have.
std::vector<std::string> target_names();

/// Chooses mode and settings, and says why; the inputs lack only the text of the measurements. The black of BT.1886
/// and the native white come from `samples`. Throws `fault::setting` for a request that cannot be read.
job_inputs inputs_for(const request& asked, const measurements& samples);

/// A gamma file of a curve over 257 even drives: "srgb" (IEC 61966-2-1), "lstar" (CIE 1976 L*), "bt1886" (ITU-R
/// BT.1886) for the given luminances of white and black, or the power of an exponent such as "2.4".
std::string gamma_file_of(const std::string& curve, double white, double black);

}  // namespace corvantile::kit
