#pragma once
// Files with a temporary name until they are put in place, folders made for them, and the removal of both if a signal
// ends the program.

#include <csignal>
#include <list>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <utility>

namespace corvantile {

/// An open file, closed by the destructor.
class descriptor {
 public:
  explicit descriptor(int fd) : fd_(fd) {}
  descriptor(descriptor&& d) noexcept : fd_(std::exchange(d.fd_, -1)) {}
  descriptor& operator=(descriptor&&) = delete;
  ~descriptor() { close(); }
  int get() const { return fd_; }

  /// Writes all of `text`, or as much as it can. Returns 0, or the errno that stopped it.
  int write(std::string_view text) const;
  /// Returns 0, or an errno: even now the system may report that there was no room for the text.
  int close();

 private:
  int fd_;
};

/// A file beside its target, with a name of its own that ends in `.tmp`. The destructor removes it unless it was put
/// in place. Each step returns 0, or the errno of what failed.
class temporary_file {
 public:
  temporary_file() = default;
  temporary_file(const temporary_file&) = delete;
  temporary_file& operator=(const temporary_file&) = delete;
  ~temporary_file();

  /// Makes the file beside `target`. `old` describes the file that is there now, null if there is none. The new file
  /// takes over its owner, group and mode if the process may set them. If not, the mode loses what would open the
  /// file wider than before: the set-id bits and, if the group differs, whatever group and others do not both have.
  int make(const std::string& target, std::string_view text, const struct stat* old);
  bool made() const { return stage_ != stage::none; }

  /// Gives the file its target's name, if the file was made. `undoable` keeps the old file under a second name until
  /// `remove_old`, if it belongs to the user and the file system can. Call this and the next two while `undisturbed`.
  int put_in_place(bool undoable);
  void take_back();   ///< restores the old file if it was kept; if there was none, removes the new one
  void remove_old();  ///< cannot be undone after this

 private:
  enum class stage { none, beside, in_place };

  int create(mode_t mode);

  std::string target_, name_, old_name_;
  stage stage_ = stage::none;
  bool replaces_ = false, replaces_own_ = false;
  bool kept_old_ = false;  // under `old_name_`
};

/// Folders made for files to come. The destructor removes those that are empty unless keep() is called.
class new_folders {
 public:
  new_folders() = default;
  new_folders(const new_folders&) = delete;
  new_folders& operator=(const new_folders&) = delete;
  ~new_folders();

  /// Makes the folder and those above it that are missing. Returns 0, or the errno of what failed.
  int make(const std::string& name);
  void keep();

 private:
  std::list<std::string> names_;  // outermost first; a list, because the addresses must not change
};

/// While one exists, the signals below wait, and no other thread makes, renames or removes a temporary file. Do not
/// nest it or hold it over anything that can take long.
class undisturbed {
 public:
  undisturbed();
  undisturbed(const undisturbed&) = delete;
  undisturbed& operator=(const undisturbed&) = delete;
  ~undisturbed();

 private:
  sigset_t before_;
};

/// From now on SIGINT, SIGTERM and SIGHUP (unless ignored) remove the temporary files and new folders before they end
/// the process; its status still tells the signal. Covers 256 at a time; any more would stay.
void remove_temporaries_on_signals();

}  // namespace corvantile
