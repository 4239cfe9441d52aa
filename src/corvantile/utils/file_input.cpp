#include "corvantile/utils/file_input.hpp"

#include <algorithm>
#include <cstdio>
#include <memory>

#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {

std::optional<std::string> read_file(std::string_view name, std::size_t most) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(std::string(trim(name)).c_str(), "rb"),
                                                             std::fclose);
  if (!file) return std::nullopt;
  std::string text;
  std::size_t used = 0;
  do {  // grows by doubling, whatever the file claims to hold
    text.resize(std::max<std::size_t>(text.size() * 2, 16384));
    used += std::fread(text.data() + used, 1, text.size() - used, file.get());
    if (used > most) refuse_content(printable(trim(name)), "more than " + std::to_string(most) + " bytes");
  } while (used == text.size());
  if (std::ferror(file.get()) != 0) return std::nullopt;
  text.resize(used);
  return text;
}

}  // namespace corvantile
