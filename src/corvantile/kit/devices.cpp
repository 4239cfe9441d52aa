#include "corvantile/kit/devices.hpp"

#include <algorithm>
#include <fmt/format.h>

#include "corvantile/kit/exports.hpp"

namespace corvantile::kit {
namespace {

constexpr const char* memories = "Take {0}/hex, mif or coe for the memories, or {0}/c/correction_tables.h.";
constexpr const char* player = "Load it: mpv --lut={0}/correction-3d.cube FILM  (or the player's 3D LUT setting)";

}  // namespace

std::span<const device_facts> devices() {
  static const std::vector<device_facts> all{
      {.id = device::linux_desktop,
       .name = "linux",
       .one_table = {"icc", "kms", "monitor-icc"},
       .two_tables = {"monitor-icc", "kms", "cube3d"},
       .advice_one = "Load {0}/correction.icc: in the desktop's colour settings, as the display's profile.",
       .advice_two = "Load {0}/display.icc: in the desktop's colour settings, as the display's profile (the desktop "
                     "then does what the tables would); or the blobs in {0}/kms, see the README there."},
      {.id = device::x11,
       .name = "x11",
       .one_table = {"icc", "cal"},
       .two_tables = {"monitor-icc", "kms", "cube3d"},
       .advice_one = "Load it: dispwin {0}/correction.cal  (or xcalib {0}/correction.icc)",
       .advice_two = "Load {0}/display.icc in programs that manage colour; X11 itself has no room for the matrix."},
      {.id = device::windows,
       .name = "windows",
       .one_table = {"icc"},
       .two_tables = {"mhc2"},
       .advice_one = "Load {0}/correction.icc: Settings > System > Display > Colour profile > Add profile.",
       .advice_two = "Load {0}/correction-mhc2.icc: Settings > System > Display > Colour profile > Add profile.",
       .two_table_mode = match_mode::cv2,
       .srgb_curve = true},
      {.id = device::video,
       .name = "video",
       .one_table = {"cube3d", "cube", "clf"},
       .two_tables = {"cube3d", "clf", "3dl"},
       .advice_one = player,
       .advice_two = player},
      {.id = device::fpga,
       .name = "fpga",
       .one_table = {"hex", "mif", "coe", "c"},
       .two_tables = {"hex", "mif", "coe", "c"},
       .advice_one = memories,
       .advice_two = memories},
      {.id = device::all,
       .name = "all",
       .one_table = format_names(),
       .two_tables = format_names(),
       .advice_one =
           "Load from {0}/: correction.icc in a desktop's colour settings, mpv --lut={0}/correction-3d.cube "
           "FILM; corvantile-kit export --help lists what else takes which.",
       .advice_two = "Load from {0}/: display.icc in a desktop's colour settings, mpv --lut={0}/correction-3d.cube "
                     "FILM; corvantile-kit export --help lists what else takes which."}};
  return all;
}

const device_facts& facts_of(device d) { return *std::ranges::find(devices(), d, &device_facts::id); }

const std::vector<std::string>& formats_for(device d, match_mode mode) {
  return mode == match_mode::cv1 ? facts_of(d).one_table : facts_of(d).two_tables;
}

std::string loading_advice(const std::string& folder, device d, match_mode mode) {
  const device_facts& facts = facts_of(d);
  return fmt::format(fmt::runtime(mode == match_mode::cv1 ? facts.advice_one : facts.advice_two),
                     folder + "/exports");
}

}  // namespace corvantile::kit
