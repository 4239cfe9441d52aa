#pragma once
// The settings of a run: the group `opts`, its defaults, its reader, the checks and the echo.
//
// The profile is text like
//   &opts  cvmode = 'CV1', wgfile = 'display.txt'   ! a comment
//          tlen = 1024, xytable(:,1) = 0.3127 0.329 /
// Keys come in any order and any case. Assignments and values are separated by commas, blanks and line ends; a value
// left out keeps what the key had; n*value stands for n values.

#include <array>
#include <cstdint>
#include <iosfwd>
#include <span>
#include <string>
#include <string_view>

#include "numerics/matrix.hpp"

namespace corvantile {

/// Every key of the group, under its own name. A new record holds the defaults.
struct settings {
  settings();

  std::string outdir;           ///< output directory; ends in "/" once end_outdir_with_slash has seen it
  std::string wgfile;           ///< measurement file
  std::string gamfile;          ///< gamma-curve file; empty selects the power law
  std::string cvmode;           ///< matching mode as given
  int tlen;                     ///< entries of every table, 2 or more
  int numsegs;                  ///< pieces of the smoothing fits, 3..256; negative: the fits' own default
  int nbits;                    ///< 0: tables of reals in 0..1; n in 1..31: of integers in 0..2^n - 1
  std::array<vec2, 4> xytable;  ///< CIE 1931 x, y of the target's white, red, green, blue
  double gamma;                 ///< exponent of the power-law target tone curve, above 0
  double boundary_tol;          ///< margin by which the gamut triangle is shrunk, in CIE 1960 uv
  double lumfrac;               ///< target white luminance as a fraction of the brightest gray's, above 0
  double rowsum_margin;         ///< head-room of the correction matrix, below 1
  double temp;      ///< target colour temperature of the gray ramp, kelvin; negative: the monitor's own white
  double wptemp;    ///< colour temperature at the ramp's top, kelvin; 0: the monitor's own, negative: no shading
  double alpha;     ///< position on the ramp below which the dark level is blended in, 0..1
  double beta;      ///< position from which the top shades towards wptemp, at most 1
  double hwid;      ///< half-width of the swath across the blackbody locus, in CIE 1960 uv
  double minslope;  ///< minimum slope of the monotone fits
};

/// Which solutions a run computes. `cv2_1` is the two-table solution, then the gray match on top of it.
enum class match_mode { cv1, cv2, cv2_1 };
constexpr bool solves_two_tables(match_mode m) { return m != match_mode::cv1; }
constexpr bool matches_gray(match_mode m) { return m != match_mode::cv2; }

/// True when an argument is "-verbose" or "-v", trailing blanks aside. All others mean nothing.
bool verbose_requested(std::span<const std::string_view> arguments);

/// Reads the group from the start of `profile`; what follows its closing slash is not looked at. Texts are cut to
/// their length (256 bytes, `cvmode` 32) and lose trailing blanks. Throws stop_run (status 4) with line, key and what
/// was expected where the text is no such group, a key is unknown, or a value does not fit.
settings read_settings(std::string_view profile);

/// The mode that `cvmode` names. Throws stop_run: status 1 when it was left unspecified, 2 when it is no mode's name.
match_mode mode_of(const settings& s);

/// Throws stop_run (status 3) when no measurement file is named.
void require_wgfile(const settings& s);

/// Fills an all-zero `xytable` from a built-in colour standard: "sRGB", "AdobeRGB98" or "SMPT-C". Any other name says
/// so on `out`, takes sRGB and sets `gamma` back to its default.
void fill_xytable(settings& s, std::ostream& out, std::string_view standard = "sRGB");

/// Appends "/" to `outdir` whatever it ends in, and cuts the result to 256 bytes.
void end_outdir_with_slash(settings& s);

/// Largest code of an integer table, 2^nbits - 1. For nbits outside 0..31, which no run gets past, 0.
std::int64_t maxcode(const settings& s);

/// The lines that verbose mode prints about the settings.
std::string echo(const settings& s);

/// Throws stop_run (status 4): `key` has a `value`, given as text, that cannot give a result, and `why`.
[[noreturn]] void refuse_setting(std::string_view key, std::string_view value, std::string_view why);

/// Judges the values that a run in `mode` uses, as far as they can be judged without the monitor; `power_law` says
/// whether `gamma` is among them. Expects a filled `xytable`. Throws stop_run (status 4), naming the key and its
/// value, for one that cannot give a result.
void check_settings(const settings& s, match_mode mode, bool power_law);

}  // namespace corvantile
