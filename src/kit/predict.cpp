// corvantile-kit predict: what the model shows for drive values, or which drive values show a colour.

#include <cmath>
#include <iostream>
#include <iterator>
#include <optional>
#include <string>
#include <utility>

#include "colour/nonpar_monitor.hpp"
#include "driver/profile.hpp"
#include "kit/files.hpp"
#include "kit/tables_on_disk.hpp"
#include "kit/verbs.hpp"
#include "monitor/measurements.hpp"
#include "monitor/monitor.hpp"
#include "utils/failure.hpp"
#include "utils/text.hpp"

namespace corvantile::kit {
namespace {

monitor fitted(const predict_options& o) {
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

std::string answer(const predict_options& o, const monitor& display, const vec3& asked) {
  if (!o.invert) return text_of(inp2out_vec(display, asked));
  const inversion found = out2inp(display, asked);
  return text_of(found.value) + free_format(std::sqrt(found.fval));
}

}  // namespace

int run_predict(const predict_options& o) {
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

}  // namespace corvantile::kit
