#pragma once
// Files and standard streams, as the verbs name them.

#include <string>
#include <string_view>
#include <vector>

#include "corvantile/utils/file_output.hpp"

namespace corvantile::kit {

/// The content of a file, or of standard input for "-": the same text whenever it is asked for. Throws
/// `fault::content` if it cannot be opened or holds more than 1 GiB.
std::string read_input(const std::string& name);

/// Makes a text the whole content of a file, or prints it if the name is empty or "-". Throws `fault::unwritable` if
/// that fails, or if the file exists and `force` is not set.
void write_output(const std::string& name, std::string_view text, bool force);

/// Throws `fault::unwritable` if a file or folder exists, unless `force` is set or it is a device or a pipe. Ask
/// early.
void refuse_to_replace(const std::string& name, bool force);

/// Writes files into a folder, all or none; their paths are relative to it. Creates the folders that are missing, and
/// removes those again if the files cannot be written. Throws `fault::unwritable`.
void write_folder(const std::string& folder, std::vector<text_file> files);

/// "xxh3:" and the 64 bits of the XXH3 checksum of a text, as 16 hexadecimal digits.
std::string checksum(std::string_view text);

}  // namespace corvantile::kit
