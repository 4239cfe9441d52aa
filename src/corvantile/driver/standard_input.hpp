#pragma once
// Settings from standard input.

#include <string>
#include <string_view>

namespace corvantile {

/// Follows a settings group as it arrives: past its comments and texts in quotes, to its closing slash.
class group_end {
 public:
  /// Takes the next piece. True once nothing that could still come would matter: the group is closed, or what began
  /// is no group.
  bool passed(std::string_view piece);

 private:
  bool passes(char c);

  char quote_ = 0;  // the text in quotes that is open
  bool comment_ = false;
  bool began_ = false;  // something other than blanks and comments was seen
};

/// What standard input holds up to the closing slash of the group (and what came in one piece with it), or all there
/// is. Whoever keeps the other end open is not waited for. Throws `fault::setting` where standard input cannot be
/// read, or holds more than 16 MiB before that slash.
std::string settings_on_standard_input();

}  // namespace corvantile
