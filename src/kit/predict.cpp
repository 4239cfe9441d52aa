// corvantile-kit predict: what the model shows for drive values, or which drive values show a colour.

#include <cmath>
#include <iostream>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "colour/nonpar_monitor.hpp"
#include "driver/profile.hpp"
#include "kit/files.hpp"
#include "kit/tables_on_disk.hpp"
#include "kit/verb.hpp"
#include "monitor/measurements.hpp"
#include "monitor/monitor.hpp"
#include "utils/failure.hpp"
#include "utils/text.hpp"

namespace corvantile::kit {
namespace {

struct options : common_options {
  std::string measurements, settings, tables;
  std::optional<int> numsegs;
  bool invert = false;
};

monitor fitted(const options& o) {
  settings set;
  if (!o.settings.empty()) set = read_profile(read_input(o.settings)).set;
  if (o.numsegs) set.numsegs = *o.numsegs;
  settings judged;  // of the settings, only these two matter to the fit
  judged.numsegs = set.numsegs;
  judged.minslope = set.minslope;
  check_settings(judged, true);
  return makemonitor(parse_measurements(o.measurements, read_input(o.measurements)), set.numsegs, set.minslope);
}

std::string text_of(const vec3& v) { return (free_format(v[0]) + free_format(v[1]) + free_format(v[2])).substr(1); }

std::string answer(const options& o, const monitor& display, const vec3& asked) {
  if (!o.invert) return text_of(inp2out_vec(display, asked));
  const inversion found = out2inp(display, asked);
  return text_of(found.value) + free_format(std::sqrt(found.fval));
}

int run(const options& o) {
  monitor display = fitted(o);
  if (!o.tables.empty()) display = monwfe(display, front_end_on_disk(o.tables));
  std::string line;
  for (std::size_t n = 1; std::getline(std::cin, line); ++n) {
    if (trim(line).empty()) continue;
    number_scanner numbers(line, n);
    vec3 asked;
    for (std::size_t i = 0; i < 3; ++i) {
      if (numbers.next(asked[i]) == number_scanner::result::number && std::isfinite(asked[i])) continue;
      refuse_content("standard input", numbers.problem(o.invert ? "X Y Z" : "r g b, each 0 to 1"));
    }
    std::cout << answer(o, display, asked) << '\n';
  }
  std::cout.flush();
  if (!std::cout) throw failure(fault::unwritable, "Cannot write standard output");
  return status::done;
}

}  // namespace

verb predict_verb(CLI::App& kit) {
  auto o = std::make_shared<options>();
  CLI::App& command = *kit.add_subcommand("predict", "Say what the display shows for drive values");
  command.add_option("MEASUREMENTS", o->measurements, "The measurement file")->required();
  auto* settings = command.add_option("--settings", o->settings, "Fit as a job with these settings would");
  command.add_option("--tables", o->tables, "Behind the tables of this folder")->excludes(settings);
  command.add_option("--numsegs", o->numsegs, "Pieces of the fitted curves (default 5)");
  command.add_flag("--invert", o->invert, "X Y Z in; r g b and the distance left out");
  command.footer(
      "Reads lines 'r g b' (0 to 1) on standard input and prints a line 'X Y Z' for each.\n\n"
      "Example:\n  echo 0.5 0.5 0.5 | corvantile-kit predict measurements.txt --tables my-display");
  return {&command, [o] { return run(*o); }};
}

}  // namespace corvantile::kit
