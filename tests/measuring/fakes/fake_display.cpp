// fake_display: what an instrument reads from a simulated display, as its surroundings are now.
//
// Usage: fake_display < DRIVES      lines 'r g b' (0 to 1); prints X Y Z of each, in cd/m2
// The environment tells the rest:
//   FAKE_STATE     folder: `count` is how many readings were taken, `loaded.cal` the curves in the video table, if
//   any,
//                  `tables` a folder of tables before the display, if any
//   FAKE_DISPLAY   parameters of simulate_display, separated by blanks
//   FAKE_DRIFT     how much brighter it gets in 100 readings, as a fraction

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>

#include "corvantile/documents/table_files.hpp"
#include "corvantile/formats/calibration.hpp"
#include "corvantile/utils/file_input.hpp"
#include "tools/simulated_display.hpp"

namespace corvantile {
namespace {

std::string setting(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

int run() {
  const std::string state = setting("FAKE_STATE") + '/';
  simulated_display display;
  std::istringstream words(setting("FAKE_DISPLAY"));
  for (std::string word; words >> word;) {
    if (const std::string wrong = set_parameter(display, word); !wrong.empty()) {
      std::cerr << "fake_display: " << wrong << '\n';
      return 2;
    }
  }
  std::size_t count = 0;
  std::ifstream(state + "count") >> count;
  const auto curves = read_file(state + "loaded.cal");
  const bool has_tables = std::filesystem::exists(state + "tables");
  const auto loaded = [&](vec3 drive) {
    if (has_tables) drive = corrected(read_tables(state + "tables"), drive);
    for (double& v : drive.v) v = std::clamp(v, 0.0, 1.0);
    if (!curves) return drive;
    const calibration_curves table = read_calibration("loaded.cal", *curves);
    for (std::size_t c = 0; c < 3; ++c) drive[c] = interp(table[c], drive[c]);
    return drive;
  };
  const double drift = std::atof(setting("FAKE_DRIFT").c_str());
  for (vec3 drive; std::cin >> drive[0] >> drive[1] >> drive[2]; ++count) {
    simulated_display now = display;
    const double brighter = 1 + drift * static_cast<double>(count) / 100;
    now.white_luminance *= brighter;
    now.black_luminance *= brighter;
    now.seed = display.seed + count;
    const std::string table = readings_table(now, {&drive, 1}, loaded);
    std::istringstream line(table.substr(table.find('\n') + 1));
    std::string cell;
    for (int column = 0; line >> cell; ++column)
      if (column >= 3) std::cout << cell << (column < 5 ? ' ' : '\n');
  }
  std::ofstream(state + "count") << count << '\n';
  return 0;
}

}  // namespace
}  // namespace corvantile

int main() { return corvantile::run(); }
