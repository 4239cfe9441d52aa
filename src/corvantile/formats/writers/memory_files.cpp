#include "corvantile/formats/writers/memory_files.hpp"

#include <bit>

#include "corvantile/formats/writers/quantiser.hpp"
#include "corvantile/formats/writers/text_form.hpp"

namespace corvantile {
namespace {

std::string_view order_of(word_layout layout) {
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
  const unsigned width = options.layout == word_layout::packed ? 3 * options.bits : options.bits;
  return {name,
          fmt::format("{}: {} entries of {} bits a channel; {}", name, table.rows(), options.bits,
                      order_of(options.layout)),
          width, arranged(codes, options)};
}

memory matrix_memory(std::string_view format, const mat3& m, matrix_format numbers) {
  const bool narrow = numbers == matrix_format::q2_14;
  fixed_point number = narrow ? fixed_point{16, 14} : fixed_point{32, 16};
  const std::uint64_t mask = (std::uint64_t{1} << number.bits) - 1;
  memory out;
  out.name = narrow ? "matrix_q2_14" : "matrix_q15_16";
  out.meaning = fmt::format("{}: value * {}, two's complement; row by row, out_c = sum of m[c][k] in_k", out.name,
                            1U << number.fraction);
  out.width = number.bits;
  for (std::size_t i = 0; i < 3; ++i)
    for (std::size_t j = 0; j < 3; ++j) out.words.push_back(static_cast<std::uint64_t>(number(m(i, j))) & mask);
  if (number.clamped > 0)
    refuse_format(format,
                  narrow ? "q2.14 holds -2 to below 2, and an entry of the matrix is outside that range; take "
                           "q15.16 for the matrix"
                         : "q15.16 holds -32768 to below 32768, and an entry of the matrix is outside that range");
  return out;
}

// One file for each memory. Comments begin with `prefix`; `append_words` writes the rest.
template <class Words>
memory_files one_file_each(std::string_view format, const device_tables& tables, const description& about,
                           const memory_options& options, std::string_view prefix, const Words& append_words) {
  const memory_set set = memory_words(format, tables, options);
  memory_files made{{}, set.clamped};
  for (const memory& m : set.memories) {
    description full = about;
    full.comments.push_back(m.meaning);
    full.comments.push_back(clamp_note(set));
    std::string text = comment_lines(full, prefix);
    append_words(text, m);
    made.files.push_back({fmt::format("{}.{}", m.name, format), std::move(text)});
  }
  return made;
}

}  // namespace

memory_set memory_words(std::string_view format, const device_tables& tables, const memory_options& options) {
  require_tables(format, tables);
  require_count(format, "bits", options.bits, 2, 16);
  memory_set set;
  if (tables.two_tables) {
    set.memories.push_back(table_memory("pre_lut", tables.pre, options, set.clamped));
    set.memories.push_back(matrix_memory(format, tables.mix, options.matrix));
  }
  set.memories.push_back(table_memory("post_lut", tables.post, options, set.clamped));
  return set;
}

std::string hex_digits(std::uint64_t v, unsigned width) { return fmt::format("{:0{}x}", v, (width + 3) / 4); }

std::string clamp_note(const memory_set& set) {
  return fmt::format("{} entries of the correction had to be clamped to what their words hold", set.clamped);
}

memory_files hex_files(const device_tables& tables, const description& about, const memory_options& options) {
  return one_file_each("hex", tables, about, options, "//", [](std::string& out, const memory& m) {
    for (const std::uint64_t word : m.words) append(out, "{}\n", hex_digits(word, m.width));
  });
}

memory_files mif_files(const device_tables& tables, const description& about, const memory_options& options) {
  return one_file_each("mif", tables, about, options, "--", [](std::string& out, const memory& m) {
    append(out, "DEPTH = {};\nWIDTH = {};\nADDRESS_RADIX = HEX;\nDATA_RADIX = HEX;\nCONTENT BEGIN\n", m.words.size(),
           m.width);
    const auto address_width = static_cast<unsigned>(std::bit_width(m.words.size() - 1));
    for (std::size_t i = 0; i < m.words.size(); ++i)
      append(out, "{} : {};\n", hex_digits(i, address_width), hex_digits(m.words[i], m.width));
    out += "END;\n";
  });
}

memory_files coe_files(const device_tables& tables, const description& about, const memory_options& options) {
  return one_file_each("coe", tables, about, options, ";", [](std::string& out, const memory& m) {
    out += "memory_initialization_radix=16;\nmemory_initialization_vector=\n";
    for (std::size_t i = 0; i < m.words.size(); ++i)
      append(out, "{}{}\n", hex_digits(m.words[i], m.width), i + 1 < m.words.size() ? ',' : ';');
  });
}

}  // namespace corvantile
