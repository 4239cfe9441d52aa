#pragma once
// Files and standard streams, as the verbs name them.

#include <string>
#include <string_view>
#include <vector>

#include "corvantile/utils/file_output.hpp"

namespace corvantile::kit {

/// What the file holds; "-" is standard input, the same text whenever it is asked for. Throws `fault::content` where
/// it cannot be opened (a missing input is an error here), or for more than 1 GiB.
std::string read_input(const std::string& name);

/// Writes a text as the whole content of a file, or to standard output where the name is empty or "-". Throws
/// `fault::unwritable` where it fails, and for a file that is there already unless `force`.
void write_output(const std::string& name, std::string_view text, bool force);

/// Throws `fault::unwritable` for a file or folder that is there already, unless `force` or it is a device or a pipe.
/// To be asked early.
void refuse_to_replace(const std::string& name, bool force);

/// Writes files into a folder, all or none; their paths are relative to it. It and folders in it are made where they
/// are missing, and those that were made go again where the files cannot be written. Throws `fault::unwritable`.
void write_folder(const std::string& folder, std::vector<text_file> files);

/// "xxh3:" and the 64 bits of the XXH3 checksum of a text, as 16 hexadecimal digits.
std::string checksum(std::string_view text);

}  // namespace corvantile::kit
