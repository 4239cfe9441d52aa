#include "corvantile/formats/detect.hpp"

#include <algorithm>
#include <array>
#include <utility>

#include "corvantile/documents/measurement_file.hpp"
#include "corvantile/formats/cgats.hpp"
#include "corvantile/formats/delimited.hpp"
#include "corvantile/formats/hcfr.hpp"
#include "corvantile/formats/own_file.hpp"
#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {
namespace {

// Refuses files that people mistake for readings, and says what to do.
void require_text(const source& from) {
  constexpr std::size_t look_at = 4096;
  const std::string_view head = std::string_view(from.text).substr(0, look_at);
  if (from.text.find_first_not_of(" \t\r\n") == std::string::npos) refuse_content(from.name, "the file is empty");
  if (head.starts_with("\xFF\xFE") || head.starts_with("\xFE\xFF"))
    refuse_content(from.name, "the text is in UTF-16; save it as UTF-8");
  if (head.substr(0, 40).ends_with("acsp")) {
    refuse_content(from.name,
                   "an ICC profile; give the readings it was made from (ArgyllCMS's extractttag -t targ "
                   "takes them out of some profiles)");
  }
  if (head.find('\0') != std::string_view::npos) {
    refuse_content(from.name, "not a text file; export the readings as .ti3 or CSV (from HCFR by \"Save as csv\")");
  }
}

}  // namespace

std::optional<source_kind> kind_named(std::string_view name) {
  using enum source_kind;
  for (const auto& [known, kind] : {std::pair{"ti3", ti3}, std::pair{"cgats", cgats}, std::pair{"csv", csv},
                                    std::pair{"hcfr", hcfr}, std::pair{"corvantile", corvantile}})
    if (name == known) return kind;
  return std::nullopt;
}

source_kind kind_of(std::string_view text) {
  constexpr std::size_t enough = 1000000;  // no header is longer
  const std::string_view content = without_byte_order_mark(text).substr(0, enough);
  if (content.starts_with("CTI3")) return source_kind::ti3;
  if (content.starts_with("CGATS") || content.find("BEGIN_DATA") != std::string_view::npos) return source_kind::cgats;
  if (hcfr_sheet_of(content)) return source_kind::hcfr;
  return is_measurement_file(content) ? source_kind::corvantile : source_kind::csv;
}

readings read_readings(const source& first, const std::optional<source>& second, const reading_options& options) {
  require_text(first);
  if (second) require_text(*second);
  const source_kind kind = options.from.value_or(kind_of(first.text));
  if (kind == source_kind::hcfr) return read_hcfr(first, second);
  if (second) {
    refuse_content(second->name, "a second file goes with HCFR's sheets only; all other readings are in one file");
  }
  if (kind == source_kind::csv) return read_delimited(first.name, first.text, options.layout);
  if (kind == source_kind::corvantile) return read_own_file(first.name, first.text);
  return read_cgats(first.name, first.text);
}

}  // namespace corvantile
