// simulate_display: writes the measurement file of a simulated display to standard output.

#include <cstdio>
#include <string>

#include "tools/simulated_display.hpp"

int main(int argc, char** argv) {
  corvantile::simulated_display display;
  for (int i = 1; i < argc; ++i) {
    const std::string word = argv[i];
    if (word == "-h" || word == "--help") {
      std::printf(
          "Usage: simulate_display [key=value ...] > measurements.txt\n"
          "Writes the readings of a simulated display. Keys, with their defaults:\n\n%s\n"
          "Chromaticities and per-channel values are separated by commas: white=0.31,0.33 gamma=2.2,2.1,2.3\n",
          corvantile::parameter_help().c_str());
      return 0;
    }
    if (const std::string wrong = set_parameter(display, word); !wrong.empty()) {
      std::fprintf(stderr, "simulate_display: %s (--help lists the keys)\n", wrong.c_str());
      return 2;
    }
  }
  if (const std::string wrong = problem(display); !wrong.empty()) {
    std::fprintf(stderr, "simulate_display: %s\n", wrong.c_str());
    return 2;
  }
  const std::string text = measurement_file(display);
  const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
  if (!written) std::fprintf(stderr, "simulate_display: standard output cannot be written\n");
  return written ? 0 : 1;
}
