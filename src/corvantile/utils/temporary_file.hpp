#pragma once
// Files under a temporary name until they take their place, and what removes them when the program is ended.

#include <csignal>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <utility>

namespace corvantile {

/// An open file, closed when its owner goes.
class descriptor {
 public:
  explicit descriptor(int fd) : fd_(fd) {}
  descriptor(descriptor&& d) noexcept : fd_(std::exchange(d.fd_, -1)) {}
  descriptor& operator=(descriptor&&) = delete;
  ~descriptor() { close(); }
  int get() const { return fd_; }

  /// Writes all of `text`, or as much as goes. 0 or the errno of what kept it from going on.
  int write(std::string_view text) const;
  /// 0 or its errno, which may tell that what was written found no room after all.
  int close();

 private:
  int fd_;
};

/// A file beside its target, with a name of its own that ends in `.tmp`, removed by the destructor unless it was put
/// in place. Each step returns 0 or the errno of what failed.
class temporary_file {
 public:
  temporary_file() = default;
  temporary_file(const temporary_file&) = delete;
  temporary_file& operator=(const temporary_file&) = delete;
  ~temporary_file();

  /// Makes the file beside `target`. `old` is what stands there now, null where nothing does: the file takes over
  /// its owner, group and mode where the process may set them. Where it may not, the mode loses what would open
  /// the file wider than it was: the set-id bits and, with another group, what group and others do not have both.
  int make(const std::string& target, std::string_view text, const struct stat* old);
  bool made() const { return stage_ != stage::none; }

  /// Gives the file, if it was made, its target's name. `undoable` keeps what stood there under a second name, if
  /// it is the user's own and the file system can, until `remove_old`. To be called while `undisturbed`, as the two
  /// below.
  int put_in_place(bool undoable);
  void take_back();   ///< the old file returns, if it was kept; where there was none there is none again
  void remove_old();  ///< no way back after this

 private:
  enum class stage { none, beside, in_place };

  int create(mode_t mode);

  std::string target_, name_, old_name_;
  stage stage_ = stage::none;
  bool replaces_ = false, replaces_own_ = false;
  bool kept_old_ = false;  // under `old_name_`
};

/// While one lives, the signals below wait, and no other thread makes, renames or removes a temporary file. Not to be
/// nested, and not to be held over anything that can take long.
class undisturbed {
 public:
  undisturbed();
  undisturbed(const undisturbed&) = delete;
  undisturbed& operator=(const undisturbed&) = delete;
  ~undisturbed();

 private:
  sigset_t before_;
};

/// From now on SIGINT, SIGTERM and SIGHUP, those that are not ignored, remove the temporary files before they end
/// the process, whose status still tells the signal. At most 64 files at a time; further ones would stay.
void remove_temporaries_on_signals();

}  // namespace corvantile
