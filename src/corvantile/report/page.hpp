#pragma once
// The report: one self-contained HTML page about a correction.
//
// The page has no scripts and loads nothing. It has styles for light and dark screens and for paper. It also works
// without colour or sight: lines differ by their dashes, and every picture has a title and a description. A figure
// that is NaN leaves a dash or a gap, never a mark. Texts are UTF-8.

#include <optional>
#include <string>
#include <vector>

#include "corvantile/appraisal/check.hpp"
#include "corvantile/appraisal/job_figures.hpp"
#include "corvantile/appraisal/verification.hpp"
#include "corvantile/job/device_tables.hpp"
#include "corvantile/job/finding.hpp"

namespace corvantile {

struct text_pair {
  std::string name, value;
};

/// How to make exactly this correction again.
struct remake_record {
  std::vector<text_pair> settings;   ///< all of them, as written in a settings group
  std::vector<text_pair> checksums;  ///< of input and table files
  std::string version;               ///< of the program
  std::string command;               ///< makes the same tables again
};

struct report_data {
  std::string display;  ///< the display's name
  std::string mode;     ///< CV1, CV2, CV2_1
  std::string target;   ///< in words: "sRGB primaries, gamma 2.2, grays at 6500 K"
  std::string unit = "cd/m2";
  std::string date;    ///< empty: not shown
  std::string folder;  ///< of the job, for commands on the page
  job_figures figures;
  device_tables tables;
  int bits = 0;                   ///< of the written entries; 0: reals
  quality measurements;           ///< of the measurements from which the correction was made
  std::vector<finding> findings;  ///< about these measurements and about the job, worst first
  std::optional<verification> measured;
  remake_record remake;
};

/// The whole page. The same data give the same bytes.
std::string report_page(const report_data& data);

/// One picture of the page as a separate file, with its style. `id` is the id of the `svg` element: `gray-cct`,
/// `gray-distance`, `gamut-uv`, ... Empty if the page has no such picture.
std::string report_picture(const report_data& data, const std::string& id);

}  // namespace corvantile
