// corvantile-kit solve: a job from its settings file to its folder.

#include <optional>
#include <utility>

#include "corvantile/driver/gamma_file.hpp"
#include "corvantile/driver/profile.hpp"
#include "corvantile/kit/files.hpp"
#include "corvantile/kit/imported.hpp"
#include "corvantile/kit/job_folder.hpp"
#include "corvantile/kit/verbs.hpp"
#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/file_input.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile::kit {
namespace {

// The settings, and the texts of the files that they name, as a folder of its own. What is wrong in a text is told
// here, by the name that it still has.
job_inputs inputs_of(const profile& given) {
  job_inputs inputs{.names = given, .measurements = read_input(given.wgfile), .gamma = {}, .why = {}};
  inputs.names.wgfile = "measurements.txt";
  inputs.names.outdir = ".";
  measurements_in(given.wgfile, inputs.measurements);
  if (!given.gamfile.empty()) {
    inputs.gamma = read_input(given.gamfile);
    inputs.names.gamfile = "gamma.txt";
    parse_tone_samples(given.gamfile, *inputs.gamma);
  }
  if (!given.grayfile.empty()) {
    inputs.factors = read_input(given.grayfile);
    inputs.names.grayfile = gray_factors_name;
  }
  return inputs;
}

// Whatever lies in the folder stays, unless it is what would be written anyway, such as the measurements.
void keep_others(const std::string& name, const std::string& text, bool force) {
  if (read_file(name) != text) refuse_to_replace(name, force);
}

}  // namespace

int run_solve(const solve_options& o) {
  const profile given = read_settings_file(o.settings);
  if (given.wgfile.empty()) throw failure(fault::setting, "Settings: wgfile, the measurement file, is missing");
  const std::string folder = o.output.empty() ? given.outdir : o.output;
  refuse_to_replace(folder + "/job.json", o.force);
  const job_inputs inputs = inputs_of(given);
  const solved_job job = solve_job(inputs);
  const std::vector<text_file> files = files_of(inputs, job);
  for (const text_file& f : files) keep_others(folder + '/' + f.path, f.text, o.force);
  write_folder(folder, files);

  for (const std::string& line : warning_lines(job.result)) say(o, line);
  say(o, std::string(name_of(job.names.set.mode)) + " solved into " + folder + ": gray CIEDE2000 mean " +
             decimal(job.figures.gray_mean, 2) + ", largest " + decimal(job.figures.gray_largest, 2) +
             "; luminance " + decimal(job.figures.white_before[1], 1) + " before, " +
             decimal(job.figures.white_after[1], 1) + " after");
  if (o.json) print_record(record_of(inputs, job));
  return status::done;
}

}  // namespace corvantile::kit
