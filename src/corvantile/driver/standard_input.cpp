#include "corvantile/driver/standard_input.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <unistd.h>
#include <vector>

#include "corvantile/utils/failure.hpp"

namespace corvantile {

bool group_end::passed(std::string_view piece) {
  return std::ranges::any_of(piece, [this](char c) { return passes(c); });
}

bool group_end::passes(char c) {
  if (comment_) {
    comment_ = c != '\n';
  } else if (quote_ != 0) {
    if (c == quote_) quote_ = 0;  // a doubled quote opens the text again at once
  } else if (c == '!') {
    comment_ = true;
  } else if (c == '\'' || c == '"') {
    quote_ = c;
  } else if (c == '/') {
    return true;
  } else if (!began_ && std::string_view(" \t\r\n\xEF\xBB\xBF").find(c) == std::string_view::npos) {
    if (c != '&') return true;
    began_ = true;
  }
  return false;
}

std::string settings_on_standard_input() {
  constexpr std::size_t most = std::size_t{16} << 20U;
  std::string text;
  std::vector<char> block(1 << 14);
  group_end end;
  while (true) {
    const ssize_t n = ::read(STDIN_FILENO, block.data(), block.size());
    if (n > 0) {
      const std::string_view piece(block.data(), static_cast<std::size_t>(n));
      text.append(piece);
      if (end.passed(piece)) return text;
      if (text.size() > most) {
        throw failure(fault::setting,
                      "Settings: no closing '/' of the group within " + std::to_string(most) + " bytes");
      }
    } else if (n == 0) {
      return text;
    } else if (errno != EINTR) {
      throw failure(fault::setting, std::string("Cannot read standard input: ") + std::strerror(errno));
    }
  }
}

}  // namespace corvantile
