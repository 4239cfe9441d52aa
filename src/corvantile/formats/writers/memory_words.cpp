#include "corvantile/formats/writers/memory_words.hpp"

#include <array>

#include "corvantile/formats/writers/quantiser.hpp"
#include "corvantile/formats/writers/text_form.hpp"

namespace corvantile {
namespace {

std::string_view in_words(word_layout layout) {
  switch (layout) {
    case word_layout::packed:
      return "one word an entry, red in the most significant bits, then green, then blue";
    case word_layout::planar:
      return "all of red, then all of green, then all of blue";
    case word_layout::interleaved:
      break;
  }
  return "red, green, blue of each entry in turn";
}

std::vector<std::uint64_t> arranged(const dense<std::uint64_t>& codes, const memory_options& options) {
  if (options.layout == word_layout::planar) return {codes.data().begin(), codes.data().end()};
  std::vector<std::uint64_t> words;
  for (std::size_t i = 0; i < codes.rows(); ++i) {
    if (options.layout == word_layout::interleaved) {
      words.insert(words.end(), {codes(i, 0), codes(i, 1), codes(i, 2)});
    } else {
      words.push_back((((codes(i, 0) << options.bits) | codes(i, 1)) << options.bits) | codes(i, 2));
    }
  }
  return words;
}

memory table_memory(const char* name, const matrix& table, const memory_options& options, std::size_t& clamped) {
  quantiser code(options.bits);
  dense<std::uint64_t> codes(table.rows(), 3);
  for (std::size_t i = 0; i < table.data().size(); ++i) codes.data()[i] = code(table.data()[i]);
  clamped += code.clamped;
  std::string meaning = std::string(name) + ": ";
  append_integer_text(meaning, table.rows());
  meaning += " entries of ";
  append_integer_text(meaning, options.bits);
  meaning.append(" bits a channel; ").append(in_words(options.layout));
  const unsigned width = options.layout == word_layout::packed ? 3 * options.bits : options.bits;
  return {name, meaning, width, arranged(codes, options)};
}

memory matrix_memory(const mat3& m, matrix_format format, std::size_t& clamped) {
  const bool narrow = format == matrix_format::q2_14;
  fixed_point number = narrow ? fixed_point{16, 14} : fixed_point{32, 16};
  const std::uint64_t mask = (std::uint64_t{1} << number.bits) - 1;
  memory out;
  out.name = narrow ? "matrix_q2_14" : "matrix_q15_16";
  out.meaning = out.name + (narrow ? ": value * 16384" : ": value * 65536") +
                ", two's complement; row by row, out_c = sum of m[c][k] in_k";
  out.width = number.bits;
  for (std::size_t i = 0; i < 3; ++i)
    for (std::size_t j = 0; j < 3; ++j) out.words.push_back(static_cast<std::uint64_t>(number(m(i, j))) & mask);
  clamped += number.clamped;
  return out;
}

}  // namespace

memory_set memory_words(std::string_view format, const device_tables& tables, const memory_options& options) {
  require_tables(format, tables);
  require_count(format, "bits", options.bits, 2, 16);
  memory_set set;
  if (tables.two_tables) {
    set.memories.push_back(table_memory("pre_lut", tables.pre, options, set.clamped));
    set.memories.push_back(matrix_memory(tables.mix, options.matrix, set.clamped));
  }
  set.memories.push_back(table_memory("post_lut", tables.post, options, set.clamped));
  return set;
}

std::string hex_digits(std::uint64_t v, unsigned width) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string s;
  for (unsigned shift = (width + 3) / 4 * 4; shift > 0; shift -= 4) s += digits[(v >> (shift - 4)) & 0xFU];
  return s;
}

std::string clamp_note(const memory_set& set) {
  return std::to_string(set.clamped) + " entries of the correction had to be clamped to what their words hold";
}

std::string memory_comment(const description& about, const memory_set& set, const memory& m,
                           std::string_view prefix) {
  description full = about;
  full.comments.push_back(m.meaning);
  full.comments.push_back(clamp_note(set));
  return comment_lines(full, prefix);
}

}  // namespace corvantile
