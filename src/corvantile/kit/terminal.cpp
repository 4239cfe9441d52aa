#include "corvantile/kit/terminal.hpp"

#include <algorithm>
#include <cstdlib>
#include <fmt/format.h>
#include <iostream>
#include <nlohmann/json.hpp>

#include "corvantile/kit/files.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile::kit {

void say(const common_options& o, std::string_view line) {
  if (!o.quiet) std::cerr << line << '\n';
}

void print_record(const nlohmann::ordered_json& record) {
  write_output("-", record.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + '\n', true);
}

std::string in_words(const vec2& xy) { return fmt::format("x {:.4f}, y {:.4f}", xy[0], xy[1]); }

std::string wrapped(std::string_view text, std::size_t margin, std::size_t width) {
  const std::string indent(margin, ' ');
  std::string out;
  std::string line = indent;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(' '), text.size());
    const std::string_view word = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.size() > margin && line.size() + 1 + word.size() > width) {
      out += line + '\n';
      line = indent;
    }
    if (line.size() > margin) line += ' ';
    line += word;
  }
  return out + line + '\n';
}

std::chrono::sys_seconds now() {
  if (const char* epoch = std::getenv("SOURCE_DATE_EPOCH"); epoch != nullptr) {
    if (const auto seconds = parse_integer(epoch)) return std::chrono::sys_seconds(std::chrono::seconds(*seconds));
  }
  return std::chrono::time_point_cast<std::chrono::seconds>(std::chrono::system_clock::now());
}

}  // namespace corvantile::kit
