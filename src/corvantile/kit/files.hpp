#pragma once
// Reading and writing files and standard streams.

#include <string>
#include <string_view>
#include <vector>

#include "corvantile/utils/file_output.hpp"

namespace corvantile::kit {

/// The content of a file, or of standard input if the name is "-", even if that is asked for twice. Throws
/// `fault::content` if the file cannot be opened or has more than 1 GiB.
std::string read_input(const std::string& name);

/// Writes `text` to a file, or prints it if the name is empty or "-". Throws `fault::unwritable` if this fails, or if
/// the file exists and `force` is not set.
void write_output(const std::string& name, std::string_view text, bool force);

/// Throws `fault::unwritable` if a file or folder exists, unless `force` is set or it is a device or a pipe. Call it
/// before the work begins.
void refuse_to_replace(const std::string& name, bool force);

/// Writes all files or none into a folder; their paths are relative to it. Creates missing folders, and removes these
/// again on failure. Throws `fault::unwritable`.
void write_folder(const std::string& folder, std::vector<text_file> files);

/// The XXH3 checksum of a text: "xxh3:" and 16 hexadecimal digits.
std::string checksum(std::string_view text);

}  // namespace corvantile::kit
