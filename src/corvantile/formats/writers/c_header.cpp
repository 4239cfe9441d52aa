#include "corvantile/formats/writers/c_header.hpp"

#include "corvantile/formats/writers/text_form.hpp"

namespace corvantile {
namespace {

// Rows of `width` items each, or one list if `width` is 0.
template <class Items, class Text>
void append_list(std::string& out, const Items& items, std::size_t width, const Text& text_of) {
  out += " = {\n";
  for (std::size_t i = 0; i < items.size(); ++i) {
    const std::size_t column = width > 0 ? i % width : i;
    const bool new_line = column % 8 == 0;
    if (i > 0) out += new_line ? ",\n" : ", ";
    if (new_line) out += "  ";
    if (width > 0 && column == 0) out += '{';
    out += text_of(items[i]);
    if (width > 0 && column == width - 1) out += '}';
  }
  out += "\n};\n";
}

std::string dimensions(word_layout layout, std::size_t rows) {
  switch (layout) {
    case word_layout::planar:
      return fmt::format("[3][{}]", rows);
    case word_layout::interleaved:
      return fmt::format("[{}][3]", rows);
    case word_layout::packed:
      break;
  }
  return fmt::format("[{}]", rows);
}

std::string float_literal(double v) {
  const std::string s = fmt::format("{:.9g}", v);
  return s + (s.find_first_of(".e") == std::string::npos ? ".0f" : "f");
}

std::string unsigned_literal(std::uint64_t word, unsigned width) {
  return fmt::format("0x{}{}", hex_digits(word, width), width > 32 ? "ULL" : "U");
}

// Two's complement of 16 or 32 bits in decimal. C has no literal for the lowest number of all.
std::string signed_literal(std::uint64_t word, unsigned width) {
  const auto value = static_cast<std::int64_t>(word) - (word >> (width - 1) != 0 ? std::int64_t{1} << width : 0);
  return value == -(std::int64_t{1} << 31) ? "-2147483647 - 1" : fmt::format("{}", value);
}

void append_words(std::string& out, const memory& m, const matrix& table, word_layout layout) {
  const bool packed = layout == word_layout::packed;
  const std::size_t width = packed ? 0 : layout == word_layout::planar ? table.rows() : 3;
  const char* type = m.width > 32 ? "uint64_t" : packed ? "uint32_t" : "uint16_t";
  append(out, "static const {} {}{}", type, m.name, dimensions(layout, table.rows()));
  append_list(out, m.words, width, [&](std::uint64_t word) { return unsigned_literal(word, m.width); });
}

void append_floats(std::string& out, const std::string& name, const matrix& table, word_layout layout) {
  // Floats do not pack.
  const word_layout shape = layout == word_layout::packed ? word_layout::interleaved : layout;
  std::vector<double> values(table.data().begin(), table.data().end());
  if (shape == word_layout::interleaved) {
    values.clear();
    for (std::size_t i = 0; i < table.rows(); ++i)
      for (std::size_t c = 0; c < 3; ++c) values.push_back(table(i, c));
  }
  append(out, "static const float {}_float{}", name, dimensions(shape, table.rows()));
  append_list(out, values, shape == word_layout::planar ? table.rows() : 3, float_literal);
}

void append_matrix(std::string& out, const memory& m, const mat3& mix) {
  append(out, "static const {} {}[3][3]", m.width > 16 ? "int32_t" : "int16_t", m.name);
  append_list(out, m.words, 3, [&](std::uint64_t word) { return signed_literal(word, m.width); });
  std::vector<double> values;
  for (std::size_t i = 0; i < 9; ++i) values.push_back(mix(i / 3, i % 3));
  out += "static const float matrix_float[3][3]";
  append_list(out, values, 3, float_literal);
}

}  // namespace

memory_files c_header_files(const device_tables& tables, const description& about, const memory_options& options) {
  const memory_set set = memory_words("c", tables, options);
  description safe{c_comment(about.title), about.comments};
  safe.comments.push_back(clamp_note(set));
  for (std::string& line : safe.comments) line = c_comment(line);
  std::string out =
      fmt::format("/*\n{} */\n#ifndef CORRECTION_TABLES_H\n#define CORRECTION_TABLES_H\n\n#include <stdint.h>\n",
                  comment_lines(safe, " *"));
  for (const memory& m : set.memories) {
    append(out, "\n/* {} */\n", m.meaning);
    if (m.name.starts_with("matrix")) {
      append_matrix(out, m, tables.mix);
      continue;
    }
    const matrix& table = m.name == "pre_lut" ? tables.pre : tables.post;
    append_words(out, m, table, options.layout);
    append_floats(out, m.name, table, options.layout);
  }
  out += "\n#endif\n";
  return {{{"correction_tables.h", out}}, set.clamped};
}

}  // namespace corvantile
