#pragma once
// The settings group `opts` as text: its reader, its writer and its echo.
//
// The group is text like
//   &opts  cvmode = 'CV1', wgfile = 'display.txt'   ! a comment
//          tlen = 1024, xytable(:,1) = 0.3127 0.329 /
// Keys come in any order and in upper or lower case. Commas, blanks and line ends separate assignments and values. A
// value that is left out keeps what the key had; n*value stands for n values.

#include <functional>
#include <iosfwd>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "corvantile/job/settings.hpp"

namespace corvantile {

/// The group: the settings of a job and the files that it works with. Each key is a member, here or in `set`, of the
/// same name. A new record holds the defaults.
struct opts {
  settings set;
  std::string cvmode = "unspecified";  ///< as given; `name_mode` sets `set.mode` from it
  std::string outdir = ".";            ///< output directory; ends in "/" after `end_outdir_with_slash`
  std::string wgfile;                  ///< measurement file
  std::string gamfile;                 ///< gamma-curve file; empty selects the power law
  std::string grayfile;                ///< file of gray factors; empty for none
};

/// Reads the group from the start of `text`, up to its closing slash. Texts are cut to their length (`longest_name`
/// bytes, `cvmode` 32) and lose trailing blanks. An `xytable` that is not given is all zero until `fill_xytable`.
/// Throws `fault::setting`, with line, key and what was expected, if the text is not such a group, a key is unknown,
/// or a value does not fit.
opts read_opts(std::string_view text);

/// Sets `set.mode` from `cvmode`. Throws `fault::no_mode` if it was left unspecified, `fault::unknown_mode` if no
/// mode has that name.
void name_mode(opts& o);

/// Fills an all-zero `xytable` from a built-in colour standard: "sRGB", "AdobeRGB98" or "SMPT-C". For any other name
/// it says so on `out`, takes sRGB and sets `gamma` back to its default.
void fill_xytable(settings& s, std::ostream& out, std::string_view standard = "sRGB");

/// Appends "/" to `outdir` whatever it ends in, and cuts the result to `longest_name` bytes.
void end_outdir_with_slash(opts& o);

/// Text, integer, switch, real, four chromaticities, or one chromaticity that may be absent.
using opts_value = std::variant<std::string, int, bool, double, chromaticity_table, std::optional<vec2>>;

struct opts_entry {
  std::string_view key;
  opts_value value;
  std::string text;       ///< the value as the group spells it
  bool left_out = false;  ///< not set, and so neither written nor echoed
};

/// Every key with its value, in the order of the echo.
std::vector<opts_entry> entries_of(const opts& o);

/// The lines that verbose mode prints about the settings.
std::string echo(const opts& o);

/// Comments on settings, by key.
using reasons = std::map<std::string, std::string, std::less<>>;

/// The group as text, a key a line; `read_opts` reads it as the same record. `why` are comments for the ends of
/// lines.
std::string opts_text(const opts& o, const reasons& why = {});

}  // namespace corvantile
