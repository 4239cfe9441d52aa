#pragma once
// What a correction does, in figures: the display before and behind its tables, against the target.
//
// Drives are 0 to 1, X, Y, Z and luminances in the unit of the measurements, chromaticities CIE 1931 x, y, distances
// between chromaticities in CIE 1976 u'v', colour differences CIEDE2000 seen against the white asked for. "Before" is
// the display as measured, "after" what the model predicts behind the tables, "asked" the target. A figure that is
// not known is not a number; it is never drawn and never counted.

#include <array>
#include <cstddef>
#include <limits>
#include <optional>
#include <string_view>
#include <vector>

#include "corvantile/appraisal/banding.hpp"
#include "corvantile/appraisal/scene.hpp"
#include "corvantile/colour/chromaticity.hpp"
#include "corvantile/numerics/matrix.hpp"

namespace corvantile {

inline constexpr double unknown = std::numeric_limits<double>::quiet_NaN();

/// The white of one state of the display, and its black.
struct white_figures {
  vec3 xyz{{unknown, unknown, unknown}};
  vec2 xy{{unknown, unknown}};
  double cct = unknown;       ///< kelvin
  double distance = unknown;  ///< from the white asked for
  vec3 black{{unknown, unknown, unknown}};
};
white_figures white_figures_of(const vec3& xyz, const vec3& black, const vec2& asked);

/// Differences in two numbers, and the drive of the largest one.
struct difference_summary {
  double mean = unknown, max = unknown;
  std::optional<vec3> where;
};

/// Makes such a summary of differences that come one by one. Those that are not finite do not count.
class difference_counter {
 public:
  void add(double difference, const vec3& drive);
  difference_summary result() const;

 private:
  difference_summary so_far_;
  double sum_ = 0;
  int count_ = 0;
};

/// A gray ramp, sample by sample.
struct gray_curve {
  std::vector<double> drive;                   ///< rising
  std::vector<double> cct;                     ///< kelvin
  std::vector<double> distance;                ///< from the white asked for
  std::array<std::vector<double>, 3> balance;  ///< red, green, blue light in percent; 100 each has the white's colour
  std::vector<double> luminance;
  std::vector<double> gamma;  ///< d ln(Y - black) / d ln(drive)
};

/// The gray ramp that shows `xyz` at the rising drives `drive`. Local gamma needs a first drive of 0.
gray_curve gray_curve_of(const scene& sc, std::vector<double> drive, const std::vector<vec3>& xyz);

struct gray_figures {
  gray_curve asked, before, after;
  double tolerance = 0.004;                                ///< distance that counts as close enough
  double cct_low = unknown, cct_high = unknown;            ///< kelvin, of the chromaticities within the tolerance
  difference_summary difference_before, difference_after;  ///< over the 256 grays of 8 bits
};

/// How much of a colour space's triangle a display covers, by area in u'v', 0 to 1.
struct coverage_figures {
  std::string_view space;  ///< "asked for", or a standard's name
  double before = unknown, after = unknown;
};

/// Primaries, the dark light taken off, and white.
struct gamut_figures {
  chromaticity_table before, after;
  std::optional<chromaticity_table> asked;      ///< none if only grays are asked for
  std::optional<chromaticity_table> reachable;  ///< of those, what the two-table solution aimed at
  vec3 moved;                                   ///< how far it moved red, green and blue, in CIE 1960 uv
  std::vector<coverage_figures> coverage;
};

/// The differences along one of the test ramps.
struct ramp_differences {
  std::vector<double> drive, before, after;
};

/// One of the usual test patches.
struct patch_figures {
  const char* name = "";
  vec3 asked;  ///< drive
  vec3 shown;  ///< the drive with which a display that is exactly as asked would show what this one shows
  double before = unknown, after = unknown;
};

/// What is left of the white's luminance; the product is that of all.
struct light_left {
  double white = 1;    ///< after going to the white asked for
  double lumfrac = 1;  ///< after the setting of this name
  double limit = 1;    ///< after what the display was measured to fall short by
  double rest = 1;     ///< after what the tables keep back
};

struct job_figures {
  vec2 white_asked{{unknown, unknown}};
  white_figures white_before, white_after;
  light_left light;
  gray_figures gray;
  gamut_figures gamut;
  difference_summary corners_before, corners_after;  ///< red, green, blue, yellow, magenta, cyan at full drive
  std::array<ramp_differences, test_ramps.size()> ramps;
  std::vector<patch_figures> patches;
  std::vector<banding_figures> banding;  ///< on 8 and on 10 bits
  std::vector<clip_figures> clipped;     ///< pre-table and post-table, or the one table
};

/// Differences of the display before the correction are taken as if the target were as bright as it is.
job_figures figures_of(const subject& s);

/// The same for a solved job, with what only its solution knows.
job_figures figures_of(const correction& result, const settings& set);

}  // namespace corvantile
