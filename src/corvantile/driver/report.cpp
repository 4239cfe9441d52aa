#include "corvantile/driver/report.hpp"

#include <algorithm>
#include <cmath>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "corvantile/colour/chromaticity.hpp"
#include "corvantile/colour/color_metrics.hpp"
#include "corvantile/job/test_ramps.hpp"
#include "corvantile/utils/array_helpers.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {
namespace {

// A title, then the values, one a line with 15 decimals.
void print_column(std::ostream& out, const char* title, std::span<const double> values) {
  std::string text = std::string("\n ") + title + '\n';
  for (const double v : values) {
    append_fixed(text, v, 0, 15);
    text += '\n';
  }
  out << text;
}

constexpr std::size_t ramp_samples = 200;

matrix samples_of(const test_ramp& ramp) {
  matrix inputs(ramp_samples, 3);
  for (std::size_t c = 0; c < 3; ++c) {
    for (std::size_t j = 0; j < ramp_samples; ++j) {
      inputs(j, c) = ramp.on[c] * (static_cast<double>(j) / static_cast<double>(ramp_samples - 1));
    }
  }
  return inputs;
}

}  // namespace

static std::string execution_time(std::string_view mode, double seconds) {
  return std::string(mode) + " execution time = " + fixed_field(seconds, 0, 2) + " seconds\n\n";
}

void report_solution(std::ostream& out, const correction& result) {
  if (result.two) {
    const bool two_targets = !result.two->cmon.fe.clips;  // else nothing was moved, and both are one
    if (two_targets) report_ramps(out, result.two->cmon, result.two->mod_smon);
    report_ramps(out, result.two->cmon, result.two->ref_smon);
    out << execution_time("CV2", result.two_seconds);
  }
  if (matches_gray(result.mode)) out << '\n' << execution_time("CV1", result.gray_seconds);
}

void report_gray_ramp(std::ostream& out, const monitor& mon, const matrix& inputs, const std::optional<vec2>& white) {
  const matrix xyz = inp2out_mat(mon, inputs);
  std::vector<double> cct(xyz.rows());
  for (std::size_t i = 0; i < cct.size(); ++i) cct[i] = xyz2cct(row3(xyz, i));
  print_column(out, "CCT", cct);
  print_column(out, "output luminance", xyz.col(1));
  if (!white) return;
  std::vector<double> distance(xyz.rows());
  for (std::size_t i = 0; i < distance.size(); ++i) {
    distance[i] = length(xy2uv1976(chromaticity(row3(xyz, i))) - xy2uv1976(*white));
  }
  print_column(out, "distance from white in u'v'", distance);
}

void report_ramps(std::ostream& out, const monitor& mon, const synthetic_monitor& syn) {
  const vec3 white = syn_whitepoint(syn);
  out << " comparing " << trim(mon.name) << " to " << trim(syn.name) << '\n';
  for (const test_ramp& ramp : test_ramps) {
    const matrix inputs = samples_of(ramp);
    const matrix shown = xyz2lab_mat(inp2out_mat(mon, inputs), white);
    const matrix wanted = xyz2lab_mat(syn_inp2out_mat(syn, inputs), white);
    const std::vector<double> differences = deltae2000_mat(wanted, shown);
    std::string text = std::string(" ") + ramp.name + " ramp errmax = " + free_format(largest(differences)) + '\n';
    for (const double d : differences) text += free_format(d) + '\n';
    out << text;
  }
}

}  // namespace corvantile
