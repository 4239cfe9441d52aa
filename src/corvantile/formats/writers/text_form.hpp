#pragma once
// How the writers put texts and numbers into files. Real numbers are `{:.9g}`: nine significant digits at most, as
// many as a 32-bit float needs.

#include <chrono>
#include <fmt/core.h>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

#include "corvantile/formats/text_lines.hpp"  // ascii
#include "corvantile/formats/writers/writer.hpp"
#include "corvantile/numerics/matrix.hpp"

namespace corvantile {

/// Formats to the end of `out`.
template <class... Values>
void append(std::string& out, fmt::format_string<Values...> form, Values&&... values) {
  fmt::format_to(std::back_inserter(out), form, std::forward<Values>(values)...);
}

/// Three numbers and a line end.
void append_row(std::string& out, const vec3& v);
/// The table, row by row.
void append_rows(std::string& out, const matrix& table);

/// ASCII for the content or a quoted attribute of an XML element.
std::string xml_text(std::string_view text);

/// ASCII between double quotes, for formats that cannot escape a quote: it becomes a single one.
std::string plain_quoted(std::string_view text);

/// A double-quoted YAML scalar.
std::string yaml_quoted(std::string_view text);

/// ASCII that neither opens nor ends a C comment.
std::string c_comment(std::string_view text);

/// The title, if there is one, and every comment as a line `PREFIX text`.
std::string comment_lines(const description& about, std::string_view prefix);
/// Without the title.
std::string comment_lines_only(const description& about, std::string_view prefix);

/// "Mon Aug  1 19:55:21 2022", UTC.
std::string date_text(std::chrono::sys_seconds t);

}  // namespace corvantile
