#pragma once
// The report: one self-contained HTML page about one correction, from plain records.
//
// The page needs no script and loads nothing. It is dressed for light and dark screens, for paper, and for readers
// who see no colour or nothing at all: lines differ by their dashes, every picture has a title and a description.
//
// Units, unless a member says otherwise: drives 0 to 1; XYZ and luminance as measured (`unit`); chromaticities in the
// CIE 1976 u'v' diagram where the member's name ends in `_uv`, and so are distances between chromaticities; colour
// differences are CIEDE2000. What is not a number, or an empty vector, is a figure that nobody knows: it leaves a
// dash or a gap, and never a mark. Texts are UTF-8. "Before" is the display as measured, "after" what the model
// predicts behind the tables, "asked" the target.
//
// gather.hpp fills all of this from a fitted monitor and its tables.

#include <array>
#include <cstddef>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "corvantile/numerics/matrix.hpp"

namespace corvantile {

inline constexpr double unknown = std::numeric_limits<double>::quiet_NaN();

struct text_pair {
  std::string name, value;
};

/// The white of one state of the display.
struct white_record {
  vec2 xy{{unknown, unknown}};  ///< CIE 1931
  double cct = unknown;         ///< kelvin
  double distance = unknown;    ///< from the white asked for
  double luminance = unknown;
  double black = unknown;  ///< luminance at zero drive
};

/// What took a part of the luminance: `factor` is what it left over.
struct loss_record {
  std::string name;
  double factor = 1;
};

/// Summary of differences: mean, largest, and where the largest is ("drive 12 %", "blue").
struct difference_summary {
  double mean = unknown, max = unknown;
  std::string where;
};

/// Section 1. The five figures, and a sentence that says what they mean.
struct verdict_record {
  std::string sentence;
  white_record asked, before, after;  ///< `asked` has `xy` and `cct` only
  std::vector<loss_record> losses;    ///< their product is after.luminance / before.luminance
  difference_summary gray_before, gray_after;
  difference_summary corners_before, corners_after;  ///< of red, green, blue, yellow, magenta, cyan at full drive
};

/// A gray ramp, sample by sample. Sections 2 and 3.
struct gray_curve {
  std::vector<double> drive;
  std::vector<double> cct;                     ///< kelvin
  std::vector<double> distance;                ///< from the white asked for
  std::array<std::vector<double>, 3> balance;  ///< red, green, blue light in percent; 100 each has the white's colour
  std::vector<double> luminance;
  std::vector<double> gamma;  ///< d ln(Y - black) / d ln(drive)
};

struct gray_record {
  gray_curve asked, before, after;
  std::optional<gray_curve> measured;            ///< read behind the tables
  double tolerance = 0.004;                      ///< distance that counts as close enough
  double cct_low = unknown, cct_high = unknown;  ///< kelvin, of the chromaticities within the tolerance
};

/// One display state's primaries, the dark light taken off, and its white.
struct gamut_corners {
  std::array<vec2, 3> primaries_uv{{{{unknown, unknown}}, {{unknown, unknown}}, {{unknown, unknown}}}};
  vec2 white_uv{{unknown, unknown}};
};

/// How much of a colour space's triangle a display covers, by area in u'v', 0 to 1.
struct coverage_record {
  std::string space;
  double before = unknown, after = unknown;
};

/// Section 4.
struct gamut_record {
  gamut_corners before, after;
  std::optional<gamut_corners> asked;  ///< nothing where only grays are asked for
  std::optional<gamut_corners> measured;
  std::vector<coverage_record> coverage;
};

/// The differences along one ramp, which mixes the channels that its name says.
struct ramp_record {
  std::string name;
  std::vector<double> drive, before, after;
  std::vector<double> measured_drive, measured;  ///< where patches of the ramp were read behind the tables
  double program_max = unknown;                  ///< the largest that the program's own verbose report prints
};

/// One of the usual test patches.
struct patch_record {
  std::string name;
  vec3 asked;  ///< drive
  vec3 shown;  ///< the drive with which a display that is exactly as asked would show what this one shows
  double before = unknown, after = unknown;
};

/// Section 5.
struct difference_record {
  std::vector<ramp_record> ramps;
  std::vector<patch_record> patches;
};

/// One table: three columns over an even axis from 0 to 1.
struct table_curve {
  std::string name;    ///< "Gray table", "Pre-table", ...
  std::string input;   ///< what its axis is, for the label
  std::string output;  ///< what its entries are
  matrix rows;         ///< n x 3
};

/// What is lost on entries of `bits` bits: gray steps that look like their neighbour, and the longest run of these.
struct banding_record {
  int bits = 8;
  std::array<double, 3> steps_lost{{unknown, unknown, unknown}};   ///< of 2^bits steps, per channel
  std::array<double, 3> longest_run{{unknown, unknown, unknown}};  ///< inputs that share one output
};

struct clip_record {
  std::string table;
  std::array<std::size_t, 3> below{}, above{};  ///< entries beyond either end, per channel
};

/// Section 6.
struct table_record {
  std::vector<table_curve> curves;
  std::optional<mat3> mix;
  int bits = 0;  ///< of the written entries; 0: reals
  std::vector<clip_record> clipped;
  std::vector<banding_record> banding;
};

/// Something that `check` found. Severities: "error", "warning", "note".
struct finding_record {
  std::string id, severity, message, action;
};

struct unseen_patch {
  vec3 drive;
  double difference = unknown;  ///< measured against the model
};

/// Section 7.
struct trust_record {
  std::vector<finding_record> findings;
  std::vector<unseen_patch> unseen;  ///< patches that no fit has seen
  double additivity = unknown;       ///< sum of the channels' luminances over the white's, the dark taken off
  double noise = unknown;            ///< scatter of the readings off a smooth curve, relative
  double spread = unknown;           ///< of repeated readings, relative
  std::string ramps;                 ///< which ramps were used and why, a sentence
  std::string how_to_measure;        ///< the command or steps that measure the result; a general sentence when empty
};

/// Section 8.
struct remake_record {
  std::vector<text_pair> settings;   ///< in full, as a settings group spells them
  std::vector<text_pair> checksums;  ///< of input and table files
  std::string version;               ///< of the program
  std::string command;               ///< that gives the same tables again
};

/// A patch that was read behind the loaded tables. XYZ in `unit`.
struct measured_patch {
  vec3 drive;
  vec3 asked, predicted, measured;
  double from_asked = unknown, from_predicted = unknown;
};

/// How the tables seem to have been loaded when the readings behind them were taken. `too_mild`: they change so
/// little that it can't be told.
enum class loading { once, too_mild, another_white, none, twice, unclear };

/// The section that appears where the result was measured.
struct measured_record {
  std::string verdict;                 ///< a sentence
  std::vector<std::string> diagnosis;  ///< paragraphs
  loading loaded = loading::unclear;   ///< what they say
  difference_summary grays, all, all_from_predicted;
  white_record white;
  std::vector<measured_patch> patches;
};

struct report_data {
  std::string display;  ///< its name
  std::string mode;     ///< CV1, CV2, CV2_1
  std::string target;   ///< in words: "sRGB primaries, gamma 2.2, grays at 6500 K"
  std::string unit = "cd/m2";
  std::string date;  ///< empty: none is shown, and the same data give the same bytes
  verdict_record verdict;
  gray_record gray;
  gamut_record gamut;
  difference_record differences;
  table_record tables;
  trust_record trust;
  remake_record remake;
  std::optional<measured_record> measured;
};

/// The whole page.
std::string report_page(const report_data& data);

/// One picture of the page (`gray-cct`, `gray-distance`, `gamut-uv`, ...: the ids of its `svg` elements) as a file of
/// its own, with the style that it needs. Empty when the page has no such picture.
std::string report_picture(const report_data& data, const std::string& id);

}  // namespace corvantile
