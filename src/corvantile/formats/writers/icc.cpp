#include "corvantile/formats/writers/icc.hpp"

#include "corvantile/formats/writers/bytes.hpp"
#include "corvantile/formats/writers/quantiser.hpp"

namespace corvantile {

// Signature, reserved, kind 0 (a table), channels, entries, bytes an entry; then red, green, blue.
static raw_tag vcgt(const matrix& table) {
  raw_tag tag{0x76636774, "vcgt"};
  append_big_endian(tag.bytes, std::uint32_t{0});
  append_big_endian(tag.bytes, std::uint32_t{0});
  append_big_endian(tag.bytes, std::uint16_t{3});
  append_big_endian(tag.bytes, static_cast<std::uint16_t>(table.rows()));
  append_big_endian(tag.bytes, std::uint16_t{2});
  quantiser code(16);
  for (const double v : table.data()) append_big_endian(tag.bytes, static_cast<std::uint16_t>(code(v)));
  return tag;
}

std::string icc_file(const device_tables& tables, const profiled_display& behind, const description& about,
                     std::size_t entries) {
  const matrix& table = require_one_table("icc", tables);
  require_count("icc", "entries", entries, 2, most_vcgt_entries);
  return icc_profile("icc", behind, about, {vcgt(resample(table, entries))});
}

}  // namespace corvantile
