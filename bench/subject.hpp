#pragma once
// What the benchmarks work on: one simulated display, and a folder that is removed when the process ends.

#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

#include "tools/simulated_display.hpp"

namespace corvantile::bench {

/// A noisy display of 100 cd/m2 with curved components, so that no fit is easy.
inline simulated_display subject(int levels) {
  simulated_display d;
  d.levels = levels;
  d.white_luminance = 100;
  d.black_luminance = 0.1;
  d.red = {{0.66, 0.32}};
  d.white = {{0.31, 0.325}};
  d.gamma = {{2.1, 2.2, 2.3}};
  d.toe = 0.02;
  d.nX = {{0.01, -0.01, 0.05}};
  d.nZ = {{-0.1, 0.05, 0.02}};
  d.noise = 0.001;
  return d;
}

/// A folder for this process only, removed at the end with everything in it.
class scratch_folder {
 public:
  scratch_folder()
      : path_(std::filesystem::temp_directory_path() / ("corvantile-bench-" + std::to_string(::getpid()))) {
    std::filesystem::create_directories(path_);
  }
  scratch_folder(const scratch_folder&) = delete;
  scratch_folder& operator=(const scratch_folder&) = delete;
  ~scratch_folder() {
    std::error_code none;
    std::filesystem::remove_all(path_, none);
  }
  std::string path() const { return path_.string() + '/'; }

 private:
  std::filesystem::path path_;
};

inline const scratch_folder& scratch() {
  static const scratch_folder folder;
  return folder;
}

/// The measurement file of `subject(levels)`, in the scratch folder.
inline std::string measurement_path(int levels) {
  const std::string path = scratch().path() + std::to_string(levels) + "_levels.txt";
  if (!std::filesystem::exists(path)) std::ofstream(path) << measurement_text(subject(levels));
  return path;
}

}  // namespace corvantile::bench
