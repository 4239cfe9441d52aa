#include "corvantile/formats/writers/coe.hpp"

namespace corvantile {

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
