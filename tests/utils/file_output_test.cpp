#include "utils/file_output.hpp"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/resource.h>
#include <unistd.h>

#include "utils/text.hpp"

namespace corvantile {
namespace {

namespace fs = std::filesystem;

// A directory of its own, with whatever the writes leave in it.
class FileOutput : public ::testing::Test {
 protected:
  void SetUp() override {
    fs::remove_all(dir_);
    fs::create_directories(dir_);
  }
  void TearDown() override { fs::remove_all(dir_); }

  std::string path(const std::string& name) const { return (dir_ / name).string(); }
  std::string content(const std::string& name) const {
    std::ostringstream text;
    text << std::ifstream(path(name)).rdbuf();
    return text.str();
  }
  std::ptrdiff_t files() const { return std::distance(fs::directory_iterator(dir_), {}); }

 private:
  fs::path dir_ = fs::path(::testing::TempDir()) / ("file_output." + std::to_string(::getpid()));
};

TEST_F(FileOutput, MakesAndReplacesFilesWithoutATrace) {
  write_file(path("table.txt"), "one\n");
  EXPECT_EQ(content("table.txt"), "one\n");
  fs::permissions(path("table.txt"), fs::perms{0640});
  fs::create_hard_link(path("table.txt"), path("old.txt"));
  write_file(path("table.txt"), "");
  EXPECT_EQ(content("table.txt"), "");
  EXPECT_EQ(fs::status(path("table.txt")).permissions(), fs::perms{0640}) << "kept";
  EXPECT_EQ(content("old.txt"), "one\n") << "renamed into place: the old content was never written over";
  EXPECT_EQ(files(), 2) << "no temporary file";
}

TEST_F(FileOutput, FollowsLinks) {
  write_file(path("real.txt"), "old");
  fs::create_symlink("real.txt", path("near"));
  fs::create_symlink(path("near"), path("far"));
  fs::create_symlink("not_yet.txt", path("dangling"));
  write_file(path("far"), "new");
  write_file(path("dangling"), "made");
  EXPECT_EQ(content("real.txt"), "new");
  EXPECT_EQ(content("not_yet.txt"), "made");
  for (const char* link : {"near", "far", "dangling"}) EXPECT_TRUE(fs::is_symlink(path(link))) << link;
  EXPECT_EQ(files(), 5);
}

TEST_F(FileOutput, FailsWithTheSystemsReasonAndLeavesNothing) {
  fs::create_directory(path("directory"));
  fs::create_symlink("loop", path("loop"));
  const struct {
    std::string path;
    const char* reason;
  } rows[] = {{path("missing/table.txt"), "No such file or directory"},
              {path("directory"), "Is a directory"},
              {path("loop"), "Too many levels of symbolic links"},
              {"/dev/full", "No space left on device"}};
  for (const auto& r : rows) {
    SCOPED_TRACE(r.path);
    try {
      write_file(r.path, "text");
      ADD_FAILURE() << "written";
    } catch (const stop_run& stop) {
      EXPECT_EQ(stop.status, 6);
      EXPECT_EQ(stop.message, "Cannot write " + r.path + ": " + r.reason);
      EXPECT_EQ(stop.to, stop_run::stream::err);
    }
  }
  EXPECT_EQ(files(), 2);
  EXPECT_TRUE(fs::is_character_file("/dev/full")) << "written in place, not replaced";
}

TEST_F(FileOutput, AFailureHalfwayLeavesTheOldContent) {
  write_file(path("table.txt"), "old");
  rlimit limit{};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &limit), 0);
  const rlimit small{8, limit.rlim_max};
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
  EXPECT_THROW(write_file(path("table.txt"), "more than eight characters"), stop_run);
  ::setrlimit(RLIMIT_FSIZE, &limit);
  std::signal(SIGXFSZ, handler);
  EXPECT_EQ(content("table.txt"), "old");
  EXPECT_EQ(files(), 1) << "no temporary file";
}

}  // namespace
}  // namespace corvantile
