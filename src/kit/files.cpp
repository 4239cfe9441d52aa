#include "kit/files.hpp"

#include <filesystem>
#include <iostream>
#include <iterator>
#include <system_error>
#include <xxhash.h>

#include "utils/failure.hpp"
#include "utils/file_output.hpp"
#include "utils/text.hpp"

namespace corvantile::kit {

namespace fs = std::filesystem;

std::string read_input(const std::string& name) {
  if (name == "-") return {std::istreambuf_iterator<char>(std::cin), {}};
  std::optional<std::string> text = read_file(name);
  if (!text) throw failure(fault::content, "Cannot open " + printable(name));
  return std::move(*text);
}

void refuse_to_replace(const std::string& name, bool force) {
  std::error_code none;
  if (force || name.empty() || name == "-" || !fs::exists(fs::symlink_status(name, none))) return;
  throw failure(fault::unwritable, printable(name) + " is there already; --force replaces it");
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

void make_folder(const std::string& name) {
  std::error_code failed;
  fs::create_directories(name, failed);
  if (failed) throw failure(fault::unwritable, "Cannot make the folder " + printable(name) + ": " + failed.message());
}

std::string checksum(std::string_view text) {
  constexpr std::string_view digits = "0123456789abcdef";
  const XXH64_hash_t hash = XXH3_64bits(text.data(), text.size());
  std::string sum = "xxh3:";
  for (int shift = 60; shift >= 0; shift -= 4) sum += digits[(hash >> static_cast<unsigned>(shift)) & 0xfU];
  return sum;
}

}  // namespace corvantile::kit
