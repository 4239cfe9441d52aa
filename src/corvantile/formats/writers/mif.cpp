#include "corvantile/formats/writers/mif.hpp"

#include <bit>

#include "corvantile/formats/writers/text_form.hpp"

namespace corvantile {

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

}  // namespace corvantile
