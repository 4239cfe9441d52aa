#pragma once
// Texts and numbers as the writers put them into files.

#include <chrono>
#include <string>
#include <string_view>

#include "corvantile/formats/text_lines.hpp"  // ascii
#include "corvantile/formats/writers/writer.hpp"
#include "corvantile/numerics/matrix.hpp"

namespace corvantile {

/// ASCII for the content or a quoted attribute of an XML element.
std::string xml_text(std::string_view text);

/// ASCII between double quotes, for formats that have no way to write a quote inside: it becomes a single one.
std::string plain_quoted(std::string_view text);

/// A double-quoted YAML scalar.
std::string yaml_quoted(std::string_view text);

/// ASCII that neither opens nor ends a C comment.
std::string c_comment(std::string_view text);

/// The title, where there is one, and every comment as a line `PREFIX text`.
std::string comment_lines(const description& about, std::string_view prefix);
/// Without the title.
std::string comment_lines_only(const description& about, std::string_view prefix);

/// Nine significant digits at most: what a 32-bit float needs.
void append_number(std::string& out, double v);
void append_integer_text(std::string& out, std::size_t v);
/// Three numbers and a line end.
void append_row(std::string& out, const vec3& v);
/// The table, row by row.
void append_rows(std::string& out, const matrix& table);

/// "Mon Aug  1 19:55:21 2022", UTC.
std::string date_text(std::chrono::sys_seconds t);

}  // namespace corvantile
