#pragma once
// A correction as words of memory, and the files that hold them: hex, mif and coe. The C header (c_header) takes the
// same words.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "corvantile/formats/writers/writer.hpp"

namespace corvantile {

/// How the three channels share a memory.
enum class word_layout {
  packed,      ///< one word per entry: red in the most significant bits, then green, then blue
  planar,      ///< all words of red, then all of green, then all of blue
  interleaved  ///< red, green and blue of the first entry, then those of the next
};

/// Two's complement; the whole bits include the sign.
enum class matrix_format {
  q2_14,  ///< 16 bits, from -2 to below 2
  q15_16  ///< 32 bits, from -32768 to below 32768: a sign, 15 whole bits, 16 after the point
};

struct memory_options {
  unsigned bits = 10;  ///< of an entry, 2 to 16
  word_layout layout = word_layout::planar;
  matrix_format matrix = matrix_format::q2_14;
};

/// One memory.
struct memory {
  std::string name;     ///< `pre_lut`, `matrix_q2_14` or `matrix_q15_16` (nine words, row by row), `post_lut`
  std::string meaning;  ///< one line for people
  unsigned width = 0;   ///< bits of a word
  std::vector<std::uint64_t> words;
};

/// The memories of a correction, and how many entries had to be clamped to what their words hold.
struct memory_set {
  std::vector<memory> memories;
  std::size_t clamped = 0;
};

/// Entries are round(v (2^bits - 1)), halves away from zero. Refuses other numbers of bits; the message names
/// `format`.
memory_set memory_words(std::string_view format, const device_tables& tables, const memory_options& options);

/// `v` in lower-case hexadecimal, with as many digits as `width` bits need.
std::string hex_digits(std::uint64_t v, unsigned width);

/// How many entries were clamped, as a sentence.
std::string clamp_note(const memory_set& set);

/// The files of a correction, and how many entries had to be clamped; the files say so, too.
struct memory_files {
  std::vector<file_content> files;
  std::size_t clamped = 0;
};

/// For `$readmemh` of Verilog, one hexadecimal word per line: `pre_lut.hex`, `matrix_q2_14.hex` (or
/// `matrix_q15_16.hex`), `post_lut.hex`; of a gray-axis job only the last.
memory_files hex_files(const device_tables& tables, const description& about, const memory_options& options = {});

/// Memory initialisation files of Intel (Altera) tools: the same memories as `.mif`.
memory_files mif_files(const device_tables& tables, const description& about, const memory_options& options = {});

/// Coefficient files of AMD (Xilinx) tools: the same memories as `.coe`.
memory_files coe_files(const device_tables& tables, const description& about, const memory_options& options = {});

}  // namespace corvantile
