#include "corvantile/kit/loading.hpp"

#include "corvantile/kit/exports.hpp"

namespace corvantile::kit {

std::vector<std::string> formats_for(const std::string& device, match_mode mode) {
  const bool one_table = mode == match_mode::cv1;
  if (device == "linux") {
    if (one_table) return {"icc", "kms", "monitor-icc"};
    return {"monitor-icc", "kms", "cube3d"};
  }
  if (device == "x11") {
    if (one_table) return {"icc", "cal"};
    return {"monitor-icc", "kms", "cube3d"};
  }
  if (device == "windows") {
    if (one_table) return {"icc"};
    return {"mhc2"};
  }
  if (device == "video") {
    if (one_table) return {"cube3d", "cube", "clf"};
    return {"cube3d", "clf", "3dl"};
  }
  if (device == "fpga") return {"hex", "mif", "coe", "c"};
  std::vector<std::string> all;
  for (const export_format& f : export_formats()) all.emplace_back(f.name);
  return all;
}

std::string loading_advice(const std::string& folder, const std::string& device, match_mode mode) {
  const std::string exports = folder + "/exports/";
  const bool one_table = mode == match_mode::cv1;
  if (device == "linux") {
    if (one_table)
      return "Load " + exports + "correction.icc: in the desktop's colour settings, as the display's profile.";
    return "Load " + exports +
           "display.icc: in the desktop's colour settings, as the display's profile (the desktop then does what the "
           "tables would); or the blobs in " +
           exports + "kms, see the README there.";
  }
  if (device == "x11") {
    if (one_table) return "Load it: dispwin " + exports + "correction.cal  (or xcalib " + exports + "correction.icc)";
    return "Load " + exports + "display.icc in programs that manage colour; X11 itself has no room for the matrix.";
  }
  if (device == "windows") {
    return "Load " + exports + (one_table ? "correction.icc" : "correction-mhc2.icc") +
           ": Settings > System > Display > Colour profile > Add profile.";
  }
  if (device == "video")
    return "Load it: mpv --lut=" + exports + "correction-3d.cube FILM  (or the player's 3D LUT setting)";
  if (device == "fpga")
    return "Take " + exports + "hex, mif or coe for the memories, or " + exports + "c/correction_tables.h.";
  return "Load from " + exports + ": " + (one_table ? "correction.icc" : "display.icc") +
         " in a desktop's colour settings, mpv --lut=" + exports +
         "correction-3d.cube FILM; corvantile-kit export --help lists what else takes which.";
}

}  // namespace corvantile::kit
