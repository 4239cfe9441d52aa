#pragma once
// A folder for one test, and an environment in which only its fakes are found.

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

#include "corvantile/measuring/stop_signals.hpp"
#include "corvantile/utils/file_input.hpp"
#include "corvantile/utils/file_output.hpp"

namespace corvantile::measuring {

class Surroundings : public ::testing::Test {
 protected:
  void SetUp() override {
    std::filesystem::create_directories(path("bin"));
    set("FAKE_STATE", folder_);
    set("PATH", PROGRAMS ":/usr/bin:/bin");  // what the fakes themselves need
    for (const char* name :
         {"FAKE_DISPLAY", "FAKE_DRIFT", "FAKE_DISPREAD", "FAKE_SPOTREAD", "FAKE_DISPWIN", "FAKE_DISPLAYS"})
      ::unsetenv(name);
  }
  void TearDown() override { std::filesystem::remove_all(folder_); }
  static void set(const char* name, const std::string& value) { ::setenv(name, value.c_str(), 1); }

  std::string path(const std::string& name) const { return folder_ + '/' + name; }
  std::string content(const std::string& name) const { return read_file(path(name)).value_or("(none)"); }
  void write(const std::string& name, const std::string& text) const { write_file(path(name), text); }
  // The folder that holds the named fakes and nothing else.
  std::string only(std::initializer_list<const char*> names) const {
    for (const char* name : names)
      std::filesystem::create_symlink(std::string(FAKES "/") + name, path("bin/") + name);
    return path("bin");
  }

  stop_signals stop_;

 private:
  const std::string folder_ = ::testing::TempDir() + "measuring." + std::to_string(::getpid());
};

}  // namespace corvantile::measuring
