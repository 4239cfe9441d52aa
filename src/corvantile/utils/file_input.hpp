#pragma once
// Whole files into memory.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace corvantile {

/// The whole content of the file; std::nullopt if it cannot be opened or read (a directory, for example). Trailing
/// blanks of the name are ignored. Throws `fault::content` if the file (or an endless device) has more than `most`
/// bytes.
std::optional<std::string> read_file(std::string_view name, std::size_t most = std::size_t{1} << 30U);

}  // namespace corvantile
