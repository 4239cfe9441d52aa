#pragma once
// Text files written whole or not at all.

#include <span>
#include <string>
#include <string_view>

namespace corvantile {

/// Makes `text` the content of the file `path`. A regular file (or a new one) is written under a temporary
/// name beside it and renamed, so that a full disk or a kill leaves the old content, never half of the
/// new. An existing file keeps its permissions, a link is followed, and what is not a regular file (a
/// pipe, a device) is written in place. Throws `fault::unwritable` with the file's name
/// and the system's reason where that fails, and leaves no other file.
void write_file(const std::string& path, std::string_view text);

/// A file to be written.
struct text_file {
  std::string path;
  std::string text;
};

/// Writes several files, in their order.
void write_files(std::span<const text_file> files);

}  // namespace corvantile
