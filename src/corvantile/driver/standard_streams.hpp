#pragma once
// Settings from standard input, and standard output as a stream that knows why it failed.

#include <streambuf>
#include <string>
#include <string_view>
#include <vector>

namespace corvantile {

/// Finds the end of a settings group while its text arrives: skips comments and texts in quotes, and stops at the
/// closing slash.
class group_end {
 public:
  /// Takes the next piece. Returns true if nothing after it matters: the group is closed, or the text is not a group.
  bool passed(std::string_view piece);

 private:
  bool passes(char c);

  char quote_ = 0;  // of the text in quotes that is open
  bool comment_ = false;
  bool began_ = false;  // something other than blanks and comments was seen
};

/// Reads standard input up to the closing slash of the group and to the end of the piece that contains it, or to its
/// end. It does not wait for more if the other side stays open. Throws `fault::setting` if standard input cannot be
/// read, or if no slash comes within 16 MiB.
std::string settings_on_standard_input();

/// Writes to the file descriptor `fd` in large blocks. If a write fails, nothing more is written, and `sync` fails
/// with `errno` set to the reason of that first failure.
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
