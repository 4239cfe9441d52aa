#pragma once
// Solved jobs in the formats of devices and programs.

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "corvantile/formats/writers/memory_files.hpp"
#include "corvantile/formats/writers/writer.hpp"
#include "corvantile/kit/job.hpp"

namespace corvantile::kit {

struct export_options {
  std::string format;
  std::string title;                   ///< empty: from the display's name, if known
  std::optional<std::size_t> size;     ///< points along a side of a 3D table; absent: 33
  std::optional<std::size_t> entries;  ///< of a resampled table; absent: the usual number of the format
  memory_options memory;               ///< words of hex, mif, coe and c
  bool wide = false;                   ///< kms: the 32-bit form
  /// The calibration to compose with, if the format replaces it: "none", the name of a .cal file, or empty for the
  /// calibration that was in effect while measuring.
  std::string calibration;
};

/// One file, or several for a folder.
struct exported {
  std::vector<file_content> files;
  calibration_use calibration = calibration_use::none;
  std::string calibration_words = {};  ///< the sentence about it in the files
  std::size_t clamped = 0;             ///< entries that did not fit their integers
};

struct export_format {
  const char* name;
  const char* what;        ///< one line for people
  bool one_file;           ///< else a folder
  const char* usual_name;  ///< of that file or folder
  bool replaces_calibration;
};

/// Every format, in the order of the help text, and their names.
const std::vector<export_format>& export_formats();
std::vector<std::string> format_names();

/// Throws `fault::setting` if there is no such format.
const export_format& format_named(const std::string& name);

/// Writes the job in a format. Throws `fault::inexpressible`, with what to do instead, if the format cannot hold it.
exported export_job(const job& j, const export_options& o);

}  // namespace corvantile::kit
