#include "corvantile/utils/file_output.hpp"

#include <cerrno>
#include <chrono>
#include <deque>
#include <fcntl.h>
#include <filesystem>
#include <map>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <unistd.h>

#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/temporary_file.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {
namespace {

namespace fs = std::filesystem;

constexpr std::chrono::seconds patience{5};

[[noreturn]] void cannot_write(const std::string& path, const std::string& reason) {
  throw failure(fault::unwritable, "Cannot write " + printable(path) + ": " + reason);
}

void require(const std::string& path, int error) {
  if (error != 0) cannot_write(path, std::generic_category().message(error));
}

// Retries until `attempt` succeeds or patience ends.
template <class F>
bool comes_true(F attempt) {
  const auto end = std::chrono::steady_clock::now() + patience;
  while (!attempt()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return true;
}

// The file that a write to `path` reaches: the end of its chain of links.
std::string behind_links(std::string path) {
  std::error_code none;
  for (int links = 0; links < 40 && fs::is_symlink(fs::symlink_status(path, none)); ++links) {
    const fs::path target = fs::read_symlink(path, none);
    path = target.is_absolute() ? target.string() : (fs::path(path).parent_path() / target).string();
  }
  return path;
}

// A file to be written, what is there now, and how to replace it.
struct destination {
  explicit destination(const text_file& f) : file(f), exists(::stat(f.path.c_str(), &old) == 0) {
    if (!exists && errno != ENOENT) require(file.path, errno);  // links in a circle, for example
    if (exists && S_ISDIR(old.st_mode)) require(file.path, EISDIR);
    if (exists && ::access(file.path.c_str(), W_OK) != 0) require(file.path, errno);
    is_stream = exists && !S_ISREG(old.st_mode);
    target = is_stream ? file.path : behind_links(file.path);
  }

  void write_temporary() {
    const int error = temporary.make(target, file.text, exists ? &old : nullptr);
    only_in_place = exists && !temporary.made() && (error == EACCES || error == EROFS);
    if (!only_in_place) require(file.path, error);
  }

  void write_in_place() const {
    descriptor out(is_stream ? open_stream() : ::open(target.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC));
    require(file.path, out.get() < 0 ? errno : 0);
    require(file.path, out.write(file.text));
    require(file.path, out.close());
  }

  const text_file& file;
  struct stat old {};
  bool exists;
  bool is_stream = false;
  bool only_in_place = false;
  std::string target;
  temporary_file temporary;

 private:
  // Opening never waits, neither for the reader of a pipe nor for the carrier of a line; writing does.
  int open_stream() const {
    int fd = -1;
    const bool opened = comes_true([&] {
      fd = ::open(target.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
      return fd >= 0 || errno != ENXIO || !S_ISFIFO(old.st_mode);
    });
    if (!opened) cannot_write(file.path, "no program reads this pipe");
    if (fd >= 0) ::fcntl(fd, F_SETFL, 0);
    return fd;
  }
};

// Locks, each released with its descriptor and kept with one file of its directory. They are taken in the order of
// device and inode, so that programs cannot wait for each other in a circle.
using directory_locks = std::map<std::pair<dev_t, ino_t>, std::pair<descriptor, const destination*>>;

directory_locks lock_directories(const std::deque<destination>& all) {
  directory_locks locks;
  for (const destination& d : all) {
    if (d.is_stream) continue;
    const std::string name = (fs::path(d.target).parent_path() / ".").string();
    descriptor directory(::open(name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    struct stat about {};
    if (directory.get() < 0 || ::fstat(directory.get(), &about) != 0) continue;  // for example, it may not be read
    locks.try_emplace({about.st_dev, about.st_ino}, std::move(directory), &d);
  }
  for (const auto& [key, lock] : locks) {
    const int directory = lock.first.get();
    // Any other error means that there are no such locks here.
    const auto taken = [&] {
      return ::flock(directory, LOCK_EX | LOCK_NB) == 0 || (errno != EWOULDBLOCK && errno != EINTR);
    };
    if (!comes_true(taken)) cannot_write(lock.second->file.path, "another program keeps its folder locked");
  }
  return locks;
}

void rename_all(std::deque<destination>& all) {
  const undisturbed section;
  for (std::size_t i = 0; i < all.size(); ++i) {
    const int error = all[i].temporary.put_in_place(i + 1 < all.size());
    if (error == 0) continue;
    for (std::size_t k = i + 1; k-- > 0;) all[k].temporary.take_back();
    require(all[i].file.path, error);
  }
  for (destination& d : all) d.temporary.remove_old();
}

}  // namespace

void write_files(std::span<const text_file> files) {
  std::deque<destination> all;
  for (const text_file& f : files) all.emplace_back(f);
  for (destination& d : all) {
    if (!d.is_stream) d.write_temporary();
  }
  for (const destination& d : all) {
    if (d.is_stream) d.write_in_place();
  }
  const directory_locks locks = lock_directories(all);
  for (const destination& d : all) {
    if (d.only_in_place) d.write_in_place();
  }
  rename_all(all);
}

void write_file(const std::string& path, std::string_view text) {
  const text_file file{path, std::string(text)};
  write_files({&file, 1});
}

}  // namespace corvantile
