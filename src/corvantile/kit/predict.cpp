// corvantile-kit predict: the colours that the model shows for drive values, or the drive values for colours.

#include <cmath>
#include <iostream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "corvantile/colour/nonpar_monitor.hpp"
#include "corvantile/documents/table_files.hpp"
#include "corvantile/kit/files.hpp"
#include "corvantile/kit/job_folder.hpp"
#include "corvantile/kit/source.hpp"
#include "corvantile/kit/verbs.hpp"
#include "corvantile/monitor/measurements.hpp"
#include "corvantile/monitor/monitor.hpp"
#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/number_scanner.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile::kit {
namespace {

monitor fitted(const predict_options& o) {
  settings set;
  if (!o.settings.empty()) set = read_opts(read_input(o.settings)).set;
  if (o.numsegs) set.numsegs = *o.numsegs;
  settings judged;  // the fit uses only these two settings
  judged.numsegs = set.numsegs;
  judged.minslope = set.minslope;
  check_settings(judged, true);
  return makemonitor(parse_measurements_or_advise(o.measurements, read_input(o.measurements)).samples, set.numsegs,
                     set.minslope);
}

// The tables in the folder. For a job, the tables as solved, before rounding to bits.
device_tables tables_in(const std::string& folder) {
  return is_job_folder(folder) ? tables_of(open_job(folder).solved.result) : read_tables(folder);
}

// The three numbers of a line.
vec3 asked_in(const std::string& line, std::size_t number, bool invert) {
  number_scanner numbers(line, number);
  vec3 asked;
  for (double& v : asked.v) {
    const bool read = numbers.next(v) == number_scanner::result::number && std::isfinite(v);
    if (read && (invert || (v >= 0 && v <= 1))) continue;
    refuse_content("standard input", numbers.problem(invert ? "X Y Z" : "r g b, each 0 to 1"));
  }
  double more = 0;
  if (numbers.next(more) != number_scanner::result::end)
    refuse_content("standard input", numbers.problem("three numbers and the end of the line"));
  return asked;
}

// X, Y, Z; or r, g, b and the remaining distance.
std::vector<double> answer(const predict_options& o, const monitor& display, const vec3& asked) {
  if (!o.invert) {
    const vec3 xyz = inp2out_vec(display, asked);
    return {xyz[0], xyz[1], xyz[2]};
  }
  const inversion found = out2inp(display, asked);
  return {found.value[0], found.value[1], found.value[2], std::sqrt(found.fval)};
}

std::string line_of(const std::vector<double>& numbers) {
  std::string line;
  for (const double v : numbers) line += free_format(v);
  return line.substr(1) + '\n';
}

}  // namespace

int run_predict(const predict_options& o) {
  refuse_to_replace(o.output, o.force);
  monitor display = fitted(o);
  if (!o.tables.empty()) display = monwfe(display, front_end_of(tables_in(o.tables)));

  const bool at_once = !o.json && (o.output.empty() || o.output == "-");  // for programs that ask line by line
  std::vector<std::vector<double>> answers;
  std::string text, line;
  for (std::size_t n = 1; std::getline(std::cin, line); ++n) {
    if (trim(line).empty()) continue;
    const auto found = answer(o, display, asked_in(line, n, o.invert));
    if (o.json) answers.push_back(found);
    if (at_once) {
      write_output("-", line_of(found), true);
    } else {
      text += line_of(found);
    }
  }
  if (o.json) print_record({{"answers", answers}});
  if (!o.output.empty() && o.output != "-") write_output(o.output, text, o.force);
  return status::done;
}

}  // namespace corvantile::kit
