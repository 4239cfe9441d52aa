// corvantile-kit solve: a job from its settings file to its folder.

#include <fmt/format.h>

#include "corvantile/documents/point_files.hpp"
#include "corvantile/kit/files.hpp"
#include "corvantile/kit/job_folder.hpp"
#include "corvantile/kit/source.hpp"
#include "corvantile/kit/verbs.hpp"
#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/file_input.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile::kit {
namespace {

// The settings and the texts of the files that they name, with the names that these get in the folder. Parses the
// texts here already, so that messages have the original names.
job_inputs inputs_of(const opts& given) {
  job_inputs inputs{.names = given, .why = {}, .measurements = read_input(given.wgfile)};
  inputs.names.wgfile = folder::measurements;
  inputs.names.outdir = ".";
  parse_measurements_or_advise(given.wgfile, inputs.measurements);
  if (!given.gamfile.empty()) {
    inputs.gamma = read_input(given.gamfile);
    inputs.names.gamfile = folder::gamma;
    parse_tone_samples(given.gamfile, *inputs.gamma);
  }
  if (!given.grayfile.empty()) {
    inputs.factors = read_input(given.grayfile);
    inputs.names.grayfile = folder::gray_factors;
  }
  return inputs;
}

// Refuses to replace a file, unless its text would stay the same (such as that of the measurements).
void keep_others(const std::string& name, const std::string& text, bool force) {
  if (read_file(name) != text) refuse_to_replace(name, force);
}

}  // namespace

int run_solve(const solve_options& o) {
  const opts given = read_settings_file(o.settings);
  if (given.wgfile.empty()) throw failure(fault::setting, "Settings: wgfile, the measurement file, is missing");
  const std::string target = o.output.empty() ? given.outdir : o.output;
  refuse_to_replace(target + '/' + folder::record, o.force);
  const job solved = solve_job(inputs_of(given));
  const job_files made = files_of(solved);
  for (const text_file& f : made.files) keep_others(target + '/' + f.path, f.text, o.force);
  write_folder(target, made.files);

  for (const std::string& line : warning_lines(solved.result)) say(o, line);
  const job_figures& f = solved.figures;
  say(o, fmt::format("{} solved into {}: gray CIEDE2000 mean {:.2f}, largest {:.2f}; luminance {:.1f} before, {:.1f} "
                     "after",
                     name_of(solved.set().mode), printable(target), f.gray.difference_after.mean,
                     f.gray.difference_after.max, f.white_before.xyz[1], f.white_after.xyz[1]));
  if (o.json) print_record(made.record);
  return status::done;
}

}  // namespace corvantile::kit
