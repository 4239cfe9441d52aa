#pragma once
// Standard output as a stream that knows why it failed.

#include <streambuf>
#include <vector>

namespace corvantile {

/// Writes to the file descriptor `fd` in large blocks. After a write that failed, `sync` fails too, with `errno` set
/// to the reason of that first failure; nothing more is written.
class descriptor_buffer : public std::streambuf {
 public:
  explicit descriptor_buffer(int fd);

 protected:
  int_type overflow(int_type c) override;
  int sync() override;

 private:
  bool write_out();

  int fd_;
  int error_ = 0;
  std::vector<char> block_;
};

}  // namespace corvantile
