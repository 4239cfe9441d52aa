#include "corvantile/driver/standard_streams.hpp"

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

descriptor_buffer::descriptor_buffer(int fd) : fd_(fd), block_(1 << 14) {
  setp(block_.data(), block_.data() + block_.size());
}

bool descriptor_buffer::write_out() {
  const char* from = pbase();
  while (error_ == 0 && from < pptr()) {
    const ssize_t n = ::write(fd_, from, static_cast<std::size_t>(pptr() - from));
    if (n >= 0) {
      from += n;
    } else if (errno != EINTR) {
      error_ = errno;
    }
  }
  setp(block_.data(), block_.data() + block_.size());
  return error_ == 0;
}

descriptor_buffer::int_type descriptor_buffer::overflow(int_type c) {
  if (!write_out()) return traits_type::eof();
  if (!traits_type::eq_int_type(c, traits_type::eof())) sputc(traits_type::to_char_type(c));
  return traits_type::not_eof(c);
}

int descriptor_buffer::sync() {
  if (write_out()) return 0;
  errno = error_;
  return -1;
}

}  // namespace corvantile
