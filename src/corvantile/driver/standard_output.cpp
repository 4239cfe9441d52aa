#include "corvantile/driver/standard_output.hpp"

#include <cerrno>
#include <unistd.h>

namespace corvantile {

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
