#pragma once
// A solved job in the formats that devices and programs load.

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
  std::string title;                   ///< empty: the display's name as far as it is known
  std::optional<std::size_t> size;     ///< of a 3D table's side; absent: 33
  std::optional<std::size_t> entries;  ///< of a resampled table; absent: the format's usual length
  memory_options memory;               ///< words of hex, mif, coe and c
  bool wide = false;                   ///< kms: the 32-bit form
  /// The calibration to compose with, if the format replaces one: empty for the one that was in effect while
  /// measuring, "none", or the name of a .cal file.
  std::string calibration;
};

/// What an export gives: one file, or several that belong together in a folder.
struct exported {
  std::vector<file_content> files;
  calibration_use calibration = calibration_use::none;
  std::string calibration_words = {};  ///< the sentence about it, as the files have it
  std::size_t clamped = 0;             ///< entries that did not fit their integers
};

/// A format of the table below.
struct export_format {
  const char* name;
  const char* what;        ///< one line for people
  bool one_file;           ///< else a folder
  const char* usual_name;  ///< of that file or folder
  bool replaces_calibration;
};

/// Every format, in the order in which help lists them.
const std::vector<export_format>& export_formats();

/// Throws `fault::setting` for any other name.
const export_format& format_named(const std::string& name);

/// The job in a format. Throws `fault::inexpressible`, with what to do instead, if the format cannot hold it.
exported export_job(const job& j, const export_options& o);

}  // namespace corvantile::kit
