#include "corvantile/kit/words.hpp"

#include <algorithm>

namespace corvantile::kit {

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

std::string_view name_of(severity level) {
  switch (level) {
    case severity::note:
      return "note";
    case severity::warning:
      return "warning";
    case severity::error:
      return "error";
  }
  return "";
}

}  // namespace corvantile::kit
