#pragma once
// What a correction does, in figures: the display without and with its tables, compared with the target.
//
// Drives are 0 to 1, X, Y, Z and luminances in the unit of the measurements, chromaticities CIE 1931 x, y, distances
// between chromaticities in CIE 1976 u'v', colour differences CIEDE2000 seen against the white asked for. "Before" is
// the display as measured, "after" what the model predicts with the tables, "asked" the target. A figure that is not
// known is NaN; it is never drawn and never counted.

#include <array>
#include <cstddef>
#include <limits>
#include <optional>
#include <string_view>
#include <vector>

#include "corvantile/appraisal/scene.hpp"
#include "corvantile/colour/chromaticity.hpp"
#include "corvantile/job/finding.hpp"
#include "corvantile/numerics/matrix.hpp"

namespace corvantile {

inline constexpr double unknown = std::numeric_limits<double>::quiet_NaN();

/// White and black of the display in one state.
struct white_figures {
  vec3 xyz{{unknown, unknown, unknown}};
  vec2 xy{{unknown, unknown}};
  double cct = unknown;       ///< kelvin
  double distance = unknown;  ///< from the white asked for
  vec3 black{{unknown, unknown, unknown}};
};
white_figures white_figures_of(const vec3& xyz, const vec3& black, const vec2& asked);

/// Mean and maximum of some differences, and the drive of the largest.
struct difference_summary {
  double mean = unknown, max = unknown;
  std::optional<vec3> where;
};

/// Summarises differences that come one by one. Those that are not finite do not count.
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
  std::array<std::vector<double>, 3> balance;  ///< red, green, blue light in percent; 100 each is the colour of white
  std::vector<double> luminance;
  std::vector<double> gamma;  ///< d ln(Y - black) / d ln(drive)
};

/// The gray ramp that shows `xyz` at the rising drives `drive`. If the first drive is not 0, `gamma` is not known.
gray_curve gray_curve_of(const scene& sc, std::vector<double> drive, const std::vector<vec3>& xyz);

struct gray_figures {
  gray_curve asked, before, after;
  double tolerance = 0.004;                                ///< a distance that is good enough
  double cct_low = unknown, cct_high = unknown;            ///< kelvin: range of the colours within the tolerance
  difference_summary difference_before, difference_after;  ///< over the 256 grays of 8 bits
};

/// The share of a colour space's triangle that a display covers, by area in u'v', 0 to 1.
struct coverage_figures {
  std::string_view space;  ///< "asked for", or a standard's name
  double before = unknown, after = unknown;
};

/// Primaries less the dark, and white.
struct gamut_figures {
  chromaticity_table before, after;
  std::optional<chromaticity_table> asked;      ///< absent if only grays are asked for
  std::optional<chromaticity_table> reachable;  ///< what the two-table solution aimed at instead
  vec3 moved;                                   ///< how far it moved red, green and blue, in CIE 1960 uv
  vec3 missed;         ///< how far red, green and blue, as shown, are from what was asked for, in u'v'
  bool clips = false;  ///< colours out of reach are clipped; no primary was moved
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
  vec3 shown;  ///< the drive at which a display exactly as asked would show what this one shows
  double before = unknown, after = unknown;
};

/// The share of white's luminance that each of these leaves. Together they leave the product.
struct light_left {
  double white = 1;    ///< the white asked for
  double lumfrac = 1;  ///< the setting of this name
  double limit = 1;    ///< the display, which was measured to be darker than the model
  double rest = 1;     ///< what the tables hold back
};

/// Gray steps that look like their neighbour, and the longest run of these, per channel.
struct banding_figures {
  int bits = 8;
  std::array<double, 3> steps_lost{};   ///< of 2^bits steps
  std::array<double, 3> longest_run{};  ///< inputs that share one output
};

/// For a chain (drive to drive, 0 to 1) whose inputs and outputs have `bits` bits.
banding_figures banding(const shown_by& chain, int bits);

/// Entries of a table that are out of range, per channel.
struct clip_figures {
  std::array<std::size_t, 3> below{}, above{};
};

/// The entries of a table (n x 3) out of the range of `bits` bits; 0 bits: out of 0 to 1.
clip_figures clipped_entries(const matrix& table, int bits);

struct job_figures {
  vec2 white_asked{{unknown, unknown}};
  white_figures white_before, white_after;
  light_left light;
  gray_figures gray;
  gamut_figures gamut;
  difference_summary corners_before, corners_after;  ///< red, green, blue, yellow, magenta, cyan at full drive
  std::array<ramp_differences, test_ramps.size()> ramps;
  std::vector<patch_figures> patches;
  std::vector<banding_figures> banding;  ///< with 8 and with 10 bits
  std::vector<clip_figures> clipped;     ///< pre-table and post-table, or the one table
};

/// The primaries less the dark, and white, of what is shown.
chromaticity_table corners_of(const shown_by& show);

/// "Before" figures ignore brightness: there the target counts as being as bright as the display.
job_figures figures_of(const subject& s);

/// The same for a solved job, with `reachable` and `moved`.
job_figures figures_of(const correction& result, const settings& set);

/// Findings about a solved job, worst first: light lost, primaries and white that miss their target by more than an
/// eye notices, differences of the grays, settings that are rarely meant, and the job's own warnings.
std::vector<finding> job_findings(const correction& result, const settings& set, const job_figures& figures);

}  // namespace corvantile
