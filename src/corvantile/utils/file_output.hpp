#pragma once
// Writes text files whole or not at all, several of them as one.

#include <span>
#include <string>
#include <string_view>

namespace corvantile {

struct text_file {
  std::string path;
  std::string text;
};

/// Makes each text the content of its file: for all files or for none.
///
/// 1. Every regular or new file is written under a temporary name beside it. Links are followed and stay.
/// 2. Anything else (a pipe, a device) is written in place. If nobody reads a pipe, the wait ends after 5 seconds.
/// 3. The directories of the others are locked (`flock`, waiting at most 5 seconds). So if two programs write the
///    same files at the same time, each leaves all of its own or none.
/// 4. A writable file in a directory that is not writable is written in place.
/// 5. The temporary files are renamed, in the order given. If one rename fails, those before it are undone.
///
/// Before the renaming begins, only the files written in place have changed, and those may be left half written. An
/// existing file keeps its owner, group and mode if the process may set them, but no access list beyond these. No
/// temporary file stays, even if a signal ends the program (see `remove_temporaries_on_signals`). Only a kill that no
/// program can catch may leave `*.tmp` files, or one set half renamed. If a directory cannot be locked (it may not be
/// read, or its file system has no locks), the files are written without a lock.
///
/// Throws `fault::unwritable` with the name of the first file that cannot be written, and the reason.
void write_files(std::span<const text_file> files);

/// The same for one file.
void write_file(const std::string& path, std::string_view text);

}  // namespace corvantile
