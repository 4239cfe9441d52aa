#pragma once
// What verbs print: lines, records, dates.

#include <chrono>
#include <cstddef>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

#include "corvantile/numerics/matrix.hpp"

namespace corvantile::kit {

/// The options of every verb. `json` promises one JSON object on standard output and nothing else there.
struct common_options {
  std::string output;
  bool quiet = false;
  bool json = false;
  bool force = false;
};

/// Prints a line for people on standard error, unless `o.quiet` is set.
void say(const common_options& o, std::string_view line);

/// Prints the object that `--json` promises on standard output. Bytes that are not UTF-8 become U+FFFD.
void print_record(const nlohmann::ordered_json& record);

/// A chromaticity: "x 0.3127, y 0.3290".
std::string in_words(const vec2& xy);

/// `text` in lines of at most `width` characters, each indented by `margin` blanks. Words are not broken.
std::string wrapped(std::string_view text, std::size_t margin, std::size_t width = 80);

/// The date to write into files: now, or SOURCE_DATE_EPOCH (seconds since 1970) if that is set, so that the same
/// files can be made again.
std::chrono::sys_seconds now();

}  // namespace corvantile::kit
