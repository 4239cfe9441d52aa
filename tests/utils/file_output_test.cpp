#include "corvantile/utils/file_output.hpp"

#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/file_input.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {

namespace fs = std::filesystem;

// A directory for one test and everything that it writes.
class FileOutput : public ::testing::Test {
 protected:
  void SetUp() override { fs::create_directories(dir_); }
  void TearDown() override { fs::remove_all(dir_); }
  std::string path(const std::string& name) const { return (dir_ / name).string(); }
  std::string content(const std::string& name) const { return read_file(path(name)).value_or("cannot be read"); }
  std::ptrdiff_t files() const { return std::distance(fs::directory_iterator(dir_), {}); }
  void refused(const std::string& name, const std::string& reason) const {
    try {
      write_file(path(name), "more than eight characters");
      ADD_FAILURE() << "written: " << name;
    } catch (const failure& stop) {
      EXPECT_EQ(stop.message, "Cannot write " + printable(path(name)) + ": " + reason);
      EXPECT_EQ(stop.kind, fault::unwritable);
    }
  }
  const fs::path dir_ = fs::path(::testing::TempDir()) / ("file_output." + std::to_string(::getpid()));
};

TEST_F(FileOutput, ReplacesFilesWithoutATraceAndFollowsLinks) {
  write_file(path("table.txt"), "one\n");
  const bool given_away = ::chown(path("table.txt").c_str(), 65534, 65533) == 0;  // only root can
  fs::permissions(path("table.txt"), fs::perms{02640});
  fs::create_hard_link(path("table.txt"), path("old.txt"));
  fs::create_symlink("table.txt", path("near"));
  fs::create_symlink(path("near"), path("far"));
  fs::create_symlink("not_yet.txt", path("dangling"));
  const std::string large(100000, 'x');
  write_file(path("far"), large);
  write_file(path("dangling"), "made");
  EXPECT_EQ(content("table.txt   "), large) << "reading ignores trailing blanks of a name";
  struct stat kept {};
  ASSERT_EQ(::stat(path("table.txt").c_str(), &kept), 0);
  EXPECT_EQ(kept.st_mode & 07777U, 02640U);
  EXPECT_EQ(kept.st_uid, given_away ? 65534U : ::getuid());
  EXPECT_EQ(kept.st_gid, given_away ? 65533U : ::getgid());
  EXPECT_EQ(content("old.txt") + content("not_yet.txt"), "one\nmade")
      << "renamed into place: the old content was never overwritten";
  for (const char* link : {"near", "far", "dangling"}) EXPECT_TRUE(fs::is_symlink(path(link))) << link;
  EXPECT_EQ(files(), 6) << "no temporary file";
  EXPECT_EQ(content("."), "cannot be read") << "a directory";
  ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
  const int reader = ::open(path("pipe").c_str(), O_RDONLY | O_NONBLOCK);
  write_file(path("pipe"), large.substr(0, 9));  // must neither block nor replace the pipe
  EXPECT_TRUE(fs::is_fifo(path("pipe")));
  ::close(reader);
}

TEST_F(FileOutput, FailsWithTheSystemsReasonAndLeavesTheOldContent) {
  write_file(path("table.txt"), "old");
  fs::create_symlink("loop", path("loop"));
  refused("no/table.txt", "No such file or directory");
  refused(".", "Is a directory");
  refused("table.txt/x", "Not a directory");
  refused("loop", "Too many levels of symbolic links");
  refused("no\n/table.txt", "No such file or directory");

  EXPECT_EQ(content("table.txt"), "old");
  EXPECT_EQ(files(), 2) << "no temporary file";
}

}  // namespace corvantile
