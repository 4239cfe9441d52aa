#pragma once
// The report: one self-contained HTML page about one correction, from the figures of the appraisal.
//
// The page needs no script and loads nothing. It has styles for light and dark screens and for paper, and for readers
// who see no colour or nothing at all: lines differ by their dashes, every picture has a title and a description. A
// figure that is not a number leaves a dash or a gap, never a mark. Texts are UTF-8.

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
  std::vector<text_pair> settings;   ///< in full, as a settings group spells them
  std::vector<text_pair> checksums;  ///< of input and table files
  std::string version;               ///< of the program
  std::string command;               ///< gives the same tables again
};

struct report_data {
  std::string display;  ///< its name
  std::string mode;     ///< CV1, CV2, CV2_1
  std::string target;   ///< in words: "sRGB primaries, gamma 2.2, grays at 6500 K"
  std::string unit = "cd/m2";
  std::string date;    ///< empty: none is shown, and the same data give the same bytes
  std::string folder;  ///< of the job, for the commands that the page names
  job_figures figures;
  device_tables tables;
  int bits = 0;                   ///< of the written entries; 0: reals
  quality measurements;           ///< of the measurements that the correction was made from
  std::vector<finding> findings;  ///< about these and about the job, worst first
  std::optional<verification> measured;
  remake_record remake;
};

/// The whole page.
std::string report_page(const report_data& data);

/// One picture of the page (`gray-cct`, `gray-distance`, `gamut-uv`, ...: the ids of its `svg` elements) as a file of
/// its own, with the style that it needs. Empty if the page has no such picture.
std::string report_picture(const report_data& data, const std::string& id);

}  // namespace corvantile
