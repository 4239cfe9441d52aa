#pragma once
// Which formats a device takes, and how a correction gets there.

#include <string>
#include <vector>

#include "corvantile/job/settings.hpp"

namespace corvantile::kit {

/// The formats for a device (linux, x11, windows, video, fpga), the best first; for "all", every format.
std::vector<std::string> formats_for(const std::string& device, match_mode mode);

/// One line: which file to load, with the command or menu for it.
std::string loading_advice(const std::string& folder, const std::string& device, match_mode mode);

}  // namespace corvantile::kit
