#include "corvantile/kit/job.hpp"

#include <iostream>
#include <utility>

#include "corvantile/documents/point_files.hpp"
#include "corvantile/kit/files.hpp"

namespace corvantile::kit {

opts read_settings_file(const std::string& name) {
  opts o = read_opts(read_input(name));
  name_mode(o);
  fill_xytable(o.set, std::cerr);
  return o;
}

job solve_job(job_inputs inputs) {
  job j{.inputs = std::move(inputs), .file = {}, .tone = {}, .result = {}, .figures = {}};
  const job_inputs& in = j.inputs;
  j.file = parse_measurement_file(in.names.wgfile, in.measurements);
  if (in.gamma) j.tone = parse_tone_samples(in.names.gamfile, *in.gamma);
  gray_factors factors;
  if (in.factors) factors = parse_gray_factors(in.names.grayfile, *in.factors);
  j.result = solve(j.set(), j.file.samples, j.tone, factors);
  j.figures = figures_of(j.result, j.set());
  return j;
}

std::vector<finding> findings_with(const opts& names, const measurements& samples) {
  std::optional<tone_samples> tone;
  if (!names.gamfile.empty()) tone = parse_tone_samples(names.gamfile, read_input(names.gamfile));
  gray_factors factors;
  if (!names.grayfile.empty()) factors = parse_gray_factors(names.grayfile, read_input(names.grayfile));
  const correction result = solve(names.set, samples, tone, factors);
  return job_findings(result, names.set, figures_of(result, names.set));
}

}  // namespace corvantile::kit
