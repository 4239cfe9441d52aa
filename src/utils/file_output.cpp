#include "utils/file_output.hpp"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

#include "utils/failure.hpp"

namespace corvantile {
namespace {

[[noreturn]] void cannot_write(const std::string& path, int reason) {
  throw failure(fault::unwritable, "Cannot write " + path + ": " + std::strerror(reason));
}

// An open file that is closed, and removed if it has a name to be removed by, unless all went well.
class output_file {
 public:
  output_file(const std::string& name, int flags) : name_(name), fd_(::open(name.c_str(), flags, 0666)) {
    if (fd_ < 0) error_ = errno;
  }
  output_file(const output_file&) = delete;
  output_file& operator=(const output_file&) = delete;
  ~output_file() {
    if (fd_ >= 0) ::close(fd_);
    if (temporary_) ::unlink(name_.c_str());
  }
  int error() const { return error_; }
  void remove_unless_kept() { temporary_ = error_ == 0; }
  void set_mode(mode_t mode) {
    if (error_ == 0 && ::fchmod(fd_, mode) != 0) error_ = errno;
  }
  void write(std::string_view text) {
    while (error_ == 0 && !text.empty()) {
      const ssize_t n = ::write(fd_, text.data(), text.size());
      if (n >= 0) {
        text.remove_prefix(static_cast<std::size_t>(n));
      } else if (errno != EINTR) {
        error_ = errno;
      }
    }
  }
  void close() {
    if (fd_ >= 0 && ::close(fd_) != 0 && error_ == 0) error_ = errno;
    fd_ = -1;
  }
  void rename_to(const std::string& target) {
    if (error_ != 0) return;
    if (::rename(name_.c_str(), target.c_str()) != 0) {
      error_ = errno;
    } else {
      temporary_ = false;
    }
  }

 private:
  std::string name_;
  int fd_;
  int error_ = 0;
  bool temporary_ = false;
};

void write_in_place(const std::string& path, std::string_view text) {
  output_file file(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC);
  file.write(text);
  file.close();
  if (file.error() != 0) cannot_write(path, file.error());
}

// Where a write to `path` ends up: the end of its chain of links.
std::string behind_links(std::string path) {
  namespace fs = std::filesystem;
  std::error_code none;
  for (int links = 0; links < 40 && fs::is_symlink(fs::symlink_status(path, none)); ++links) {
    const fs::path target = fs::read_symlink(path, none);
    path = target.is_absolute() ? target.string() : (fs::path(path).parent_path() / target).string();
  }
  return path;
}

}  // namespace

void write_file(const std::string& path, std::string_view text) {
  const std::string target = behind_links(path);
  struct stat old {};
  const bool exists = ::stat(target.c_str(), &old) == 0;
  if (!exists && errno != ENOENT) cannot_write(path, errno);  // links in a circle, for one
  if (exists && !S_ISREG(old.st_mode)) return write_in_place(path, text);
  if (exists && ::access(target.c_str(), W_OK) != 0) cannot_write(path, errno);

  for (int attempt = 0;; ++attempt) {
    const std::string name = target + "." + std::to_string(::getpid()) + "-" + std::to_string(attempt) + ".tmp";
    output_file file(name, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC);
    if (file.error() == EEXIST && attempt < 100) continue;
    // A file that may be written in a directory that may not: there is only one way.
    if (exists && (file.error() == EACCES || file.error() == EROFS)) return write_in_place(path, text);
    file.remove_unless_kept();
    if (exists) file.set_mode(old.st_mode & 07777);
    file.write(text);
    file.close();
    file.rename_to(target);
    if (file.error() != 0) cannot_write(path, file.error());
    return;
  }
}

void write_files(std::span<const text_file> files) {
  for (const text_file& f : files) write_file(f.path, f.text);
}

}  // namespace corvantile
