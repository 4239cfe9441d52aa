#pragma once
// What people and programs see of a verb: lines, records, dates.

#include <chrono>
#include <cstddef>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

namespace corvantile::kit {

/// The options of every verb. `json` promises one JSON object on standard output and nothing else there.
struct common_options {
  std::string output;
  bool quiet = false;
  bool json = false;
  bool force = false;
};

/// A line for people, on standard error; nothing if they asked for quiet.
void say(const common_options& o, std::string_view line);

/// The object that `--json` promises, on standard output. Bytes that are not UTF-8 become U+FFFD.
void print_record(const nlohmann::ordered_json& record);

/// `text` in lines of at most `width` characters, each indented by `margin` blanks. Words are not broken.
std::string wrapped(std::string_view text, std::size_t margin, std::size_t width = 80);

/// The date that files say they were made on: now, or SOURCE_DATE_EPOCH (seconds since 1970) if that is set, so that
/// the same files can be made again.
std::chrono::sys_seconds now();

}  // namespace corvantile::kit
