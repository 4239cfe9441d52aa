// simulate_display: writes what an instrument would read from a simulated display to standard output: the measurement
// file of its ramps, or readings of any drives, with or without correction tables.

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include "corvantile/documents/table_files.hpp"
#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/number_scanner.hpp"
#include "corvantile/utils/text.hpp"
#include "tools/simulated_display.hpp"

namespace corvantile {
namespace {

constexpr const char* usage =
    "Usage: simulate_display [key=value ...] > measurements.txt\n"
    "       simulate_display [key=value ...] --show [--tables FOLDER] < drives.txt\n"
    "Writes the readings of a simulated display: its ramps, or, with --show, what it\n"
    "shows for the lines 'r g b' (0 to 1) of standard input. With --tables, the drives\n"
    "first pass through the tables in FOLDER.\n"
    "Keys, with their defaults:\n\n";

// The drives on standard input.
std::vector<vec3> asked_for() {
  const std::string text{std::istreambuf_iterator<char>(std::cin), {}};
  number_scanner numbers(text);
  std::vector<vec3> asked;
  std::size_t count = 0;
  for (double v = 0;; ++count) {
    const auto found = numbers.next(v);
    if (found == number_scanner::result::end && count % 3 == 0) return asked;
    if (found != number_scanner::result::number || !(v >= 0 && v <= 1))
      refuse_content("standard input", numbers.problem("three drives from 0 to 1 per line"));
    if (count % 3 == 0) asked.emplace_back();
    asked.back()[count % 3] = v;
  }
}

// The tables in a folder, applied as a device does: results are clipped to 0 to 1.
struct tables_of_folder {
  device_tables tables;
  vec3 operator()(const vec3& drive) const {
    vec3 out = corrected(tables, drive);
    for (double& v : out.v) v = std::clamp(v, 0.0, 1.0);
    return out;
  }
};

struct task {
  simulated_display display;
  bool show = false;
  std::string tables;
};

// Throws `fault::setting` for an unknown word.
task task_of(const std::vector<std::string>& words) {
  task t;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (words[i] == "--show") {
      t.show = true;
    } else if (words[i] == "--tables" && i + 1 < words.size()) {
      t.tables = words[++i];
    } else if (const std::string wrong = set_parameter(t.display, words[i]); !wrong.empty()) {
      throw failure(fault::setting, wrong + " (--help lists the keys)");
    }
  }
  if (!t.show && !t.tables.empty()) throw failure(fault::setting, "--tables needs --show");
  if (const std::string wrong = problem(t.display); !wrong.empty()) throw failure(fault::setting, wrong);
  return t;
}

std::string text_of(const task& t) {
  if (!t.show) return measurement_text(t.display);
  if (t.tables.empty()) return readings_table(t.display, asked_for(), [](const vec3& u) { return u; });
  return readings_table(t.display, asked_for(), tables_of_folder{read_tables(t.tables)});
}

int run(const std::vector<std::string>& words) {
  for (const std::string& word : words) {
    if (word != "-h" && word != "--help") continue;
    std::printf(
        "%s%s\nChromaticities and per-channel values are separated by commas:\n"
        "white=0.31,0.33 gamma=2.2,2.1,2.3\n",
        usage, parameter_help().c_str());
    return 0;
  }
  try {
    const std::string text = text_of(task_of(words));
    const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
    if (!written) std::fprintf(stderr, "simulate_display: cannot write to standard output\n");
    return written ? 0 : 1;
  } catch (const failure& f) {
    std::fprintf(stderr, "simulate_display: %s\n", f.message.c_str());
    return 2;
  }
}

}  // namespace
}  // namespace corvantile

int main(int argc, char** argv) {
  return corvantile::run(std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc));
}
