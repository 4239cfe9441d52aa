#pragma once
// Checksums that tell whether a text is the one from before.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace corvantile::measuring {

/// "xxh3:" and the 64 bits of the XXH3 checksum as 16 hexadecimal digits.
std::string checksum(std::string_view text);

/// Of a file's content; nothing if it cannot be read.
std::optional<std::string> checksum_of_file(const std::string& path);

/// The lower 32 bits as 8 hexadecimal digits, to guard one line.
std::string line_checksum(std::string_view line);

}  // namespace corvantile::measuring
