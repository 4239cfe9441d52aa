#pragma once
// The devices for which corrections are made: what each can load, and how.

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "corvantile/job/settings.hpp"

namespace corvantile::kit {

enum class device { linux_desktop, x11, windows, video, fpga, all };

struct device_facts {
  device id;
  const char* name;                     ///< on the command line
  std::vector<std::string> one_table;   ///< formats for a gray correction, the best first
  std::vector<std::string> two_tables;  ///< formats for a correction with a matrix, the best first
  /// One line about what to load where; `{0}` is the folder of the exports.
  const char *advice_one, *advice_two;
  match_mode two_table_mode = match_mode::cv2_1;  ///< the mode for a target with primaries
  bool srgb_curve = false;                        ///< in that mode, the device applies the sRGB curve itself
};

/// Every device, `all` last.
std::span<const device_facts> devices();
const device_facts& facts_of(device d);

/// The formats for a device, the best first.
const std::vector<std::string>& formats_for(device d, match_mode mode);

/// One line: which file to load, and with what command or menu.
std::string loading_advice(const std::string& folder, device d, match_mode mode);

}  // namespace corvantile::kit
