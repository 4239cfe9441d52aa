#include "corvantile/kit/files.hpp"

#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <iostream>
#include <string>
#include <system_error>
#include <vector>
#include <xxhash.h>

#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/file_input.hpp"
#include "corvantile/utils/temporary_file.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile::kit {

namespace fs = std::filesystem;
namespace {

void make_folder(new_folders& made, const std::string& name) {
  const int error = made.make(name);
  if (error == 0) return;
  throw failure(fault::unwritable, fmt::format("Cannot make the folder {}: {}", printable(name),
                                               std::generic_category().message(error)));
}

// Reads standard input once, and keeps it.
const std::string& standard_input() {
  static const std::string text = [] {
    constexpr std::size_t most = std::size_t{1} << 30U;
    std::string all;
    std::size_t used = 0;
    do {
      all.resize(std::max<std::size_t>(2 * all.size(), 65536));
      std::cin.read(all.data() + used, static_cast<std::streamsize>(all.size() - used));
      used += static_cast<std::size_t>(std::cin.gcount());
      if (used > most) refuse_content("standard input", fmt::format("more than {} bytes", most));
    } while (std::cin);
    all.resize(used);
    return all;
  }();
  return text;
}

// Writing to one of these destroys nothing.
bool is_stream(const std::string& name) {
  std::error_code none;
  const fs::file_status at = fs::status(name, none);
  return fs::is_character_file(at) || fs::is_fifo(at) || fs::is_socket(at);
}

}  // namespace

std::string read_input(const std::string& name) {
  if (name == "-") return standard_input();
  std::optional<std::string> text = read_file(name);
  if (!text) throw failure(fault::content, "Cannot open " + printable(name));
  return std::move(*text);
}

void refuse_to_replace(const std::string& name, bool force) {
  std::error_code none;
  if (force || name.empty() || name == "-" || !fs::exists(fs::symlink_status(name, none)) || is_stream(name)) return;
  throw failure(fault::unwritable, printable(name) + " exists already; --force replaces it");
}

void write_output(const std::string& name, std::string_view text, bool force) {
  if (name.empty() || name == "-") {
    std::cout << text << std::flush;
    if (!std::cout) throw failure(fault::unwritable, "Cannot write standard output");
    return;
  }
  refuse_to_replace(name, force);
  write_file(name, text);
}

void write_folder(const std::string& folder, std::vector<text_file> files) {
  new_folders made;
  make_folder(made, folder);
  for (text_file& f : files) {
    f.path.insert(0, folder + '/');
    make_folder(made, fs::path(f.path).parent_path().string());
  }
  write_files(files);
  made.keep();
}

std::string checksum(std::string_view text) {
  return fmt::format("xxh3:{:016x}", XXH3_64bits(text.data(), text.size()));
}

}  // namespace corvantile::kit
