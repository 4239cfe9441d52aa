#pragma once
// Text files written whole or not at all, several of them as one.

#include <span>
#include <string>
#include <string_view>

namespace corvantile {

/// A file to be written.
struct text_file {
  std::string path;
  std::string text;
};

/// Makes each text the content of its file: of all of them, or of none.
///
/// 1. Every regular file, or new one, is written under a temporary name beside it. A link is followed and stays.
/// 2. What is neither (a pipe, a device) is written in place. A pipe that nobody reads is waited for 5 seconds.
/// 3. The directories of the others are locked (`flock`; 5 seconds at most are waited), so that of two programs that
///    write the same files at a time each leaves all of its own or none.
/// 4. A file that may be written in a directory that may not is written in place.
/// 5. The temporary files are renamed, in the order given; if one of them cannot be, those before it are taken back.
///
/// Until the renaming begins, nothing but what is written in place has changed; that may be left half written. An
/// existing file keeps owner, group and mode, where the process may set them, but no access list beyond these.
/// Nothing temporary stays, also when a signal ends the program (see `remove_temporaries_on_signals`); only a kill
/// that no program sees may leave `*.tmp`, or the names of one set half renamed. A directory that cannot be locked
/// (one that may not be read, a file system without locks) is written without.
///
/// Throws `fault::unwritable` with the name of the first file that stands in the way, and the reason.
void write_files(std::span<const text_file> files);

/// The same for one file.
void write_file(const std::string& path, std::string_view text);

}  // namespace corvantile
