#include "corvantile/formats/writers/memory_files.hpp"

#include <bit>

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

// The description, the memory's meaning and the number of clamped entries, each as a line `PREFIX text`.
std::string memory_comment(const description& about, const memory_set& set, const memory& m,
                           std::string_view prefix) {
  description full = about;
  full.comments.push_back(m.meaning);
  full.comments.push_back(clamp_note(set));
  return comment_lines(full, prefix);
}

// One file for each memory, its text made by `text_of`.
template <class Text>
memory_files one_file_each(const memory_set& set, std::string_view extension, const Text& text_of) {
  memory_files out{{}, set.clamped};
  for (const memory& m : set.memories) out.files.push_back({m.name + std::string(extension), text_of(m)});
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

memory_files hex_files(const device_tables& tables, const description& about, const memory_options& options) {
  const memory_set set = memory_words("hex", tables, options);
  return one_file_each(set, ".hex", [&](const memory& m) {
    std::string out = memory_comment(about, set, m, "//");
    for (const std::uint64_t word : m.words) out += hex_digits(word, m.width) + "\n";
    return out;
  });
}

memory_files mif_files(const device_tables& tables, const description& about, const memory_options& options) {
  const memory_set set = memory_words("mif", tables, options);
  return one_file_each(set, ".mif", [&](const memory& m) {
    std::string out = memory_comment(about, set, m, "--") + "DEPTH = ";
    append_integer_text(out, m.words.size());
    out += ";\nWIDTH = ";
    append_integer_text(out, m.width);
    out += ";\nADDRESS_RADIX = HEX;\nDATA_RADIX = HEX;\nCONTENT BEGIN\n";
    const auto address_width = static_cast<unsigned>(std::bit_width(m.words.size() - 1));
    for (std::size_t i = 0; i < m.words.size(); ++i)
      out += hex_digits(i, address_width) + " : " + hex_digits(m.words[i], m.width) + ";\n";
    return out + "END;\n";
  });
}

memory_files coe_files(const device_tables& tables, const description& about, const memory_options& options) {
  const memory_set set = memory_words("coe", tables, options);
  return one_file_each(set, ".coe", [&](const memory& m) {
    std::string out =
        memory_comment(about, set, m, ";") + "memory_initialization_radix=16;\nmemory_initialization_vector=\n";
    for (std::size_t i = 0; i < m.words.size(); ++i)
      out += hex_digits(m.words[i], m.width) + (i + 1 < m.words.size() ? ",\n" : ";\n");
    return out;
  });
}

}  // namespace corvantile
