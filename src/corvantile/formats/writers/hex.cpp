#include "corvantile/formats/writers/hex.hpp"

namespace corvantile {

memory_files hex_files(const device_tables& tables, const description& about, const memory_options& options) {
  const memory_set set = memory_words("hex", tables, options);
  return one_file_each(set, ".hex", [&](const memory& m) {
    std::string out = memory_comment(about, set, m, "//");
    for (const std::uint64_t word : m.words) out += hex_digits(word, m.width) + "\n";
    return out;
  });
}

}  // namespace corvantile
