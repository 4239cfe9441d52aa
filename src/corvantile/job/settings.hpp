#pragma once
// What one job is asked to do: which correction, towards which target.

#include <array>
#include <optional>
#include <string_view>

#include "corvantile/colour/standards.hpp"
#include "corvantile/matching/matching.hpp"

namespace corvantile {

/// Which solutions a job computes: the gray match, two tables and a matrix, or these and then the gray match.
enum class match_mode { cv1, cv2, cv2_1 };
constexpr bool solves_two_tables(match_mode m) { return m != match_mode::cv1; }
constexpr bool matches_gray(match_mode m) { return m != match_mode::cv2; }

/// The mode called "CV1", "CV2" or "CV2_1", or the same in lower case; std::nullopt for any other name.
std::optional<match_mode> mode_named(std::string_view name);
std::string_view name_of(match_mode mode);

/// "compress" or "clip"; nothing for any other name.
std::optional<gamut_mapping> gamut_mapping_named(std::string_view name);
std::string_view name_of(gamut_mapping mapping);

/// The settings of a job, with the defaults of the settings group. `check_settings` tells which values are valid.
struct settings {
  match_mode mode = match_mode::cv1;
  int tlen = 256;   ///< entries of every table, 2 to 1 048 576
  int numsegs = 5;  ///< pieces of the smoothing fits, 3 to 256; negative: the default of the fits
  int nbits = 0;    ///< how tables are written; 0: reals in 0..1; n in 1..31: integers in 0..2^n - 1
  chromaticity_table xytable = srgb;  ///< target of the two-table solution
  double gamma = 2.2;                 ///< exponent of the power-law target tone curve, above 0
  double boundary_tol = 0.001;        ///< margin by which the gamut triangle is shrunk, in CIE 1960 uv
  double lumfrac = 0.95;              ///< target white luminance as a fraction of the brightest gray's, above 0
  double rowsum_margin = 0.05;        ///< headroom of the correction matrix, below 1
  corvantile::gamut_mapping gamut_mapping = corvantile::gamut_mapping::compress;  ///< of primaries out of reach
  double temp = -1;     ///< colour temperature of the gray ramp, kelvin; negative: a constant chromaticity
  double wptemp = -1;   ///< colour temperature at the ramp's top, kelvin; 0: the monitor's own; negative: no shading
  double alpha = 0.5;   ///< position on the ramp below which the dark is blended in, 0..1
  double beta = 0.8;    ///< position on the ramp above which it shades towards wptemp, at most 1
  double hwid = 0;      ///< half-width of the swath across the blackbody locus, in CIE 1960 uv
  double minslope = 0;  ///< minimum slope of the monotone fits
  std::optional<vec2> white = {};  ///< x, y of the grays if `temp` is negative; absent: the monitor's own
  bool restart = false;            ///< search again for grays that were not found
};

/// The settings of the gray match.
gray_ramp_params gray_ramp_of(const settings& s);

/// Throws `fault::setting`, naming key and value, if a value cannot give a result. Checks only what the mode uses, as
/// far as possible without the monitor. `power_law` tells whether `gamma` is used.
void check_settings(const settings& s, bool power_law);

}  // namespace corvantile
