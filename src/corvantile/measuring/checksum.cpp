#include "corvantile/measuring/checksum.hpp"

#include <fmt/core.h>
#include <xxhash.h>

#include "corvantile/utils/file_input.hpp"

namespace corvantile::measuring {

std::string checksum(std::string_view text) {
  return fmt::format("xxh3:{:016x}", XXH3_64bits(text.data(), text.size()));
}

std::optional<std::string> checksum_of_file(const std::string& path) {
  const auto text = read_file(path);
  return text ? std::optional(checksum(*text)) : std::nullopt;
}

std::string line_checksum(std::string_view line) {
  return fmt::format("{:08x}", XXH3_64bits(line.data(), line.size()) & 0xffffffffU);
}

}  // namespace corvantile::measuring
