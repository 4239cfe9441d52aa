#pragma once
// The devices that a correction can be made for: what each loads, and how.

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "corvantile/job/settings.hpp"

namespace corvantile::kit {

enum class device { linux_desktop, x11, windows, video, fpga, all };

struct device_facts {
  device id;
  const char* name;                     ///< as the command line has it
  std::vector<std::string> one_table;   ///< formats for a gray correction, the best first
  std::vector<std::string> two_tables;  ///< and for one with a matrix
  /// Where to load what, as one line; `{}` stands for the folder of the exports.
  const char *advice_one, *advice_two;
  match_mode two_table_mode = match_mode::cv2_1;  ///< what a target with primaries is solved as
  bool srgb_curve = false;                        ///< two tables: it has the sRGB curve built in
};

/// Every device, `all` last.
std::span<const device_facts> devices();
const device_facts& facts_of(device d);

/// The formats for a device, the best first.
const std::vector<std::string>& formats_for(device d, match_mode mode);

/// One line: which file to load, with the command or menu for it.
std::string loading_advice(const std::string& folder, device d, match_mode mode);

}  // namespace corvantile::kit
