#pragma once
// The settings group `opts` as text: its reader and its echo.
//
// The profile is text like
//   &opts  cvmode = 'CV1', wgfile = 'display.txt'   ! a comment
//          tlen = 1024, xytable(:,1) = 0.3127 0.329 /
// Keys come in any order and any case. Assignments and values are separated by commas, blanks and line ends; a value
// left out keeps what the key had; n*value stands for n values.

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <map>
#include <string>
#include <string_view>

#include "corvantile/job/settings.hpp"

namespace corvantile {

/// What the group says: the settings of the job and the files that it works with. Every key has a member of its own
/// name here or there. A new record holds the defaults.
struct profile {
  settings set;
  std::string cvmode = "unspecified";  ///< as given; `set.mode` follows from it by `name_mode`
  std::string outdir = ".";            ///< output directory; ends in "/" once end_outdir_with_slash has seen it
  std::string wgfile;                  ///< measurement file
  std::string gamfile;                 ///< gamma-curve file; empty selects the power law
  std::string grayfile;                ///< file of gray factors; empty for none
};

/// Reads the group from the start of `text`; what follows its closing slash is not looked at. Texts are cut to
/// their length (`longest_name` bytes, `cvmode` 32) and lose trailing blanks. An `xytable` that is not given is all
/// zero, until `fill_xytable`. Throws `fault::setting` with line, key and what was expected where the text is no such
/// group, a key is unknown, or a value does not fit.
profile read_profile(std::string_view text);

/// Sets `set.mode` from `cvmode`. Throws `fault::no_mode` when it was left unspecified, `fault::unknown_mode` when it
/// is no mode's name.
void name_mode(profile& p);

/// Fills an all-zero `xytable` from a built-in colour standard: "sRGB", "AdobeRGB98" or "SMPT-C". Any other name says
/// so on `out`, takes sRGB and sets `gamma` back to its default.
void fill_xytable(settings& s, std::ostream& out, std::string_view standard = "sRGB");

/// Appends "/" to `outdir` whatever it ends in, and cuts the result to `longest_name` bytes.
void end_outdir_with_slash(profile& p);

/// The lines that verbose mode prints about the settings.
std::string echo(const profile& p);

/// The group as text, a key a line, which `read_profile` reads as the same record. `why` gives comments for the end
/// of a line, by key.
std::string profile_text(const profile& p, const std::map<std::string, std::string, std::less<>>& why = {});

}  // namespace corvantile
