#include "corvantile/utils/temporary_file.hpp"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <pthread.h>
#include <unistd.h>

namespace corvantile {
namespace {

constexpr std::array ending_signals = {SIGINT, SIGTERM, SIGHUP};

sigset_t set_of_ending_signals() {
  sigset_t set;
  ::sigemptyset(&set);
  for (const int signal : ending_signals) ::sigaddset(&set, signal);
  return set;
}

// Files and folders to remove if a signal ends the program. Only the holder of `busy` may read or change the list. A
// thread holds it with the signals blocked, so a handler never waits for the thread that it interrupts.
std::atomic_flag busy;
std::array<const char*, 256> listed_names{};

void hold() {
  while (busy.test_and_set(std::memory_order_acquire)) {
  }
}

void replace_in_list(const char* before, const char* after) {
  for (const char*& name : listed_names) {
    if (name == before) {
      name = after;
      return;
    }
  }
}

// A signal handler: makes only calls that are safe in one. It never gives `busy` back, so nothing is made or renamed
// any more. `static`, because C linkage alone would put the name among the library's symbols despite the namespace.
extern "C" {
static void remove_listed_and_end(int signal) {
  hold();
  // Backwards, for a folder is listed before what is in it.
  for (std::size_t i = listed_names.size(); i-- > 0;) {
    if (listed_names[i] != nullptr && ::unlink(listed_names[i]) != 0) ::rmdir(listed_names[i]);
  }
  ::signal(signal, SIG_DFL);
  ::raise(signal);  // blocked until the handler returns
}
}

void keep_owner_and_mode(int fd, const struct stat& old) {
  constexpr mode_t set_ids = S_ISUID | S_ISGID;
  mode_t mode = old.st_mode & 07777;
  const bool group_kept = ::fchown(fd, static_cast<uid_t>(-1), old.st_gid) == 0;
  const bool owner_kept = ::fchown(fd, old.st_uid, static_cast<gid_t>(-1)) == 0;
  if (!owner_kept || !group_kept) mode &= ~set_ids;
  if (!group_kept) {
    const mode_t both = (mode >> 3U) & mode & S_IRWXO;
    mode = (mode & ~static_cast<mode_t>(S_IRWXG | S_IRWXO)) | both << 3U | both;
  }
  ::fchmod(fd, mode);
}

}  // namespace

int descriptor::write(std::string_view text) const {
  while (!text.empty()) {
    const ssize_t n = ::write(fd_, text.data(), text.size());
    if (n >= 0) {
      text.remove_prefix(static_cast<std::size_t>(n));
    } else if (errno != EINTR) {
      return errno;
    }
  }
  return 0;
}

int descriptor::close() {
  const int fd = std::exchange(fd_, -1);
  return fd >= 0 && ::close(fd) != 0 ? errno : 0;
}

temporary_file::~temporary_file() {
  if (stage_ != stage::beside) return;
  const undisturbed section;
  ::unlink(name_.c_str());
  replace_in_list(name_.c_str(), nullptr);
}

int temporary_file::make(const std::string& target, std::string_view text, const struct stat* old) {
  target_ = target;
  replaces_ = old != nullptr;
  // In a sticky directory, another user's file can be given a second name but that name cannot be removed again.
  replaces_own_ = replaces_ && (old->st_uid == ::geteuid() || ::geteuid() == 0);
  // While a private file is being written, nobody else may read it.
  descriptor file(create(replaces_ ? 0600 : 0666));
  if (file.get() < 0) return errno;
  const int unwritten = file.write(text);
  if (unwritten != 0) return unwritten;
  if (old != nullptr) keep_owner_and_mode(file.get(), *old);
  return file.close();
}

// Returns the descriptor, or -1 with errno set.
int temporary_file::create(mode_t mode) {
  const std::filesystem::path path(target_);
  const std::string start = path.filename().string().substr(0, 200) + '.' + std::to_string(::getpid()) + '-';
  for (int attempt = 0;; ++attempt) {
    const std::string stem = (path.parent_path() / (start + std::to_string(attempt))).string();
    name_ = stem + ".tmp";
    old_name_ = stem + ".old.tmp";
    const undisturbed section;
    const int fd = ::open(name_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (fd < 0 && errno == EEXIST && attempt < 100) continue;
    if (fd >= 0) {
      stage_ = stage::beside;
      replace_in_list(nullptr, name_.c_str());
    }
    return fd;
  }
}

int temporary_file::put_in_place(bool undoable) {
  if (stage_ != stage::beside) return 0;
  kept_old_ = undoable && replaces_own_ && ::link(target_.c_str(), old_name_.c_str()) == 0;
  if (::rename(name_.c_str(), target_.c_str()) != 0) return errno;
  replace_in_list(name_.c_str(), nullptr);
  stage_ = stage::in_place;
  return 0;
}

void temporary_file::take_back() {
  if (stage_ == stage::in_place && !replaces_) ::unlink(target_.c_str());
  if (stage_ == stage::in_place && kept_old_) {
    ::rename(old_name_.c_str(), target_.c_str());  // if this fails too, the old file keeps its second name
    kept_old_ = false;
  }
  remove_old();
}

void temporary_file::remove_old() {
  if (kept_old_) ::unlink(old_name_.c_str());
  kept_old_ = false;
}

new_folders::~new_folders() {
  for (auto name = names_.rbegin(); name != names_.rend(); ++name) ::rmdir(name->c_str());
  keep();
}

int new_folders::make(const std::string& name) {
  struct stat there {};
  if (::stat(name.c_str(), &there) == 0) return S_ISDIR(there.st_mode) ? 0 : ENOTDIR;
  const std::string parent = std::filesystem::path(name).parent_path().string();
  const int without = parent.empty() ? 0 : make(parent);
  if (without != 0) return without;
  const undisturbed section;
  if (::mkdir(name.c_str(), 0777) != 0) return errno == EEXIST ? 0 : errno;  // by another program, meanwhile
  replace_in_list(nullptr, names_.emplace_back(name).c_str());
  return 0;
}

void new_folders::keep() {
  const undisturbed section;
  for (const std::string& name : names_) replace_in_list(name.c_str(), nullptr);
  names_.clear();
}

undisturbed::undisturbed() {
  const sigset_t set = set_of_ending_signals();
  ::pthread_sigmask(SIG_BLOCK, &set, &before_);
  hold();
}

undisturbed::~undisturbed() {
  const int error = errno;  // of the guarded steps
  busy.clear(std::memory_order_release);
  ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  errno = error;
}

void remove_temporaries_on_signals() {
  struct sigaction action {};
  action.sa_handler = remove_listed_and_end;
  action.sa_mask = set_of_ending_signals();
  for (const int signal : ending_signals) {
    struct sigaction now {};
    if (::sigaction(signal, nullptr, &now) == 0 && now.sa_handler != SIG_IGN) ::sigaction(signal, &action, nullptr);
  }
}

}  // namespace corvantile
