#pragma once
// The settings group `opts`: reader, writer and echo.
//
// The group looks like this:
//   &opts  cvmode = 'CV1', wgfile = 'display.txt'   ! a comment
//          tlen = 1024, xytable(:,1) = 0.3127 0.329 /
// Keys may come in any order, in upper or lower case. Commas, blanks and line ends separate assignments and values.
// An omitted value leaves the key as it was; n*value means n equal values.

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

/// The settings of a job and its files. Each key of the group is a member of the same name, here or in `set`. A new
/// record has the defaults.
struct opts {
  settings set;
  std::string cvmode = "unspecified";  ///< as given; `name_mode` sets `set.mode` from it
  std::string outdir = ".";            ///< output directory
  std::string wgfile;                  ///< measurement file
  std::string gamfile;                 ///< gamma file; empty: the power law
  std::string grayfile;                ///< file of gray factors; empty: none
};

/// Reads the group at the start of `text`, up to its closing slash. Texts are cut to `longest_name` bytes (`cvmode`:
/// 32) and lose trailing blanks. If `xytable` is not given, it is all zero: see `fill_xytable`. Throws
/// `fault::setting`, with line, key and what was expected, if the text is not such a group, a key is unknown, or a
/// value does not fit.
opts read_opts(std::string_view text);

/// Sets `set.mode` from `cvmode`. Throws `fault::no_mode` if `cvmode` was not given, `fault::unknown_mode` if no mode
/// has that name.
void name_mode(opts& o);

/// Fills an `xytable` that is all zero from a built-in standard: "sRGB", "AdobeRGB98" or "SMPT-C". For any other name
/// it prints a line on `out`, takes sRGB and resets `gamma` to its default.
void fill_xytable(settings& s, std::ostream& out, std::string_view standard = "sRGB");

/// Appends "/" to `outdir`, even after another "/", and cuts the result to `longest_name` bytes.
void end_outdir_with_slash(opts& o);

/// A text, integer, switch, real, four chromaticities, a gamut mapping, or one optional chromaticity.
using opts_value =
    std::variant<std::string, int, bool, double, chromaticity_table, gamut_mapping, std::optional<vec2>>;

struct opts_entry {
  std::string_view key;
  opts_value value;
  std::string text;       ///< the value as written in the group
  bool left_out = false;  ///< not set: neither written nor echoed
};

/// Every key with its value, in the order of the echo.
std::vector<opts_entry> entries_of(const opts& o);

/// What verbose mode prints about the settings.
std::string echo(const opts& o);

/// Comments by key.
using reasons = std::map<std::string, std::string, std::less<>>;

/// The group as text, one key a line, with the comments of `why` at the ends of the lines. `read_opts` reads it back
/// as the same record.
std::string opts_text(const opts& o, const reasons& why = {});

}  // namespace corvantile
