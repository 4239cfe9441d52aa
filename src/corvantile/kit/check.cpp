// corvantile-kit check: whether measurements can be trusted, and what a job would make of them.

#include "corvantile/appraisal/check.hpp"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "corvantile/kit/files.hpp"
#include "corvantile/kit/job.hpp"
#include "corvantile/kit/verbs.hpp"

namespace corvantile::kit {
namespace {

using json = nlohmann::ordered_json;

json record_of(const difference_figures& f) { return {{"n", f.n}, {"mean", f.mean}, {"p95", f.p95}, {"max", f.max}}; }

json record_of(const quality& q, const std::vector<finding>& findings) {
  json record = {{"additivity", q.additivity}, {"dark_spread", q.dark_spread}};
  record["repeat_spread"] = q.repeat_spread ? json(*q.repeat_spread) : json(nullptr);
  record["accuracy"] = {{"unseen", record_of(q.accuracy.unseen)},
                        {"near_gray", record_of(q.accuracy.near_gray)},
                        {"white_ramp", record_of(q.accuracy.white_ramp)}};
  record["white"] = {
      {"x", q.white_xy[0]}, {"y", q.white_xy[1]}, {"cct", q.white_cct}, {"from_d65", q.white_from_d65}};
  record["contrast"] = std::isfinite(q.contrast) ? json(q.contrast) : json(nullptr);
  record["noise"] = {{"dark", q.noise.dark}, {"middle", q.noise.middle}, {"bright", q.noise.bright}};
  record["numsegs"] = q.numsegs;
  for (const gamut_comparison& g : q.gamut)
    record["gamut"][std::string(g.name)] = {{"area", g.area}, {"coverage", g.coverage}};
  record["findings"] = json::array();
  for (const finding& f : findings) {
    record["findings"].push_back(
        {{"id", f.id}, {"severity", name_of(f.level)}, {"message", f.message}, {"action", f.action}});
  }
  return record;
}

std::string accuracy_line(const char* what, const difference_figures& f) {
  if (f.n == 0) return fmt::format("  {:<12}none\n", what);
  return fmt::format("  {:<12}mean {:.2f}, 95 % within {:.2f}, largest {:.2f} ({} patches)\n", what, f.mean, f.p95,
                     f.max, f.n);
}

std::string text_of(const quality& q, const std::vector<finding>& findings) {
  std::string text;
  for (const finding& f : findings) {
    text += fmt::format("{}: {}\n", name_of(f.level), f.id) + wrapped(f.message, 4);
    if (!f.action.empty()) text += wrapped("-> " + f.action, 4);
  }
  text += fmt::format("\nwhite         {}, {:.0f} K, {:.4f} u'v' from D65\n", in_words(q.white_xy), q.white_cct,
                      q.white_from_d65);
  text += fmt::format("luminance     {:.1f}, contrast ", q.white[1]) +
          (std::isfinite(q.contrast) ? fmt::format("{:.0f} : 1\n", q.contrast) : "unknown (dark of 0)\n");
  text += "model against samples, CIEDE2000\n";
  text += accuracy_line("unseen", q.accuracy.unseen);
  text += accuracy_line("near gray", q.accuracy.near_gray);
  text += accuracy_line("white ramp", q.accuracy.white_ramp);
  text += fmt::format("channels' sum {:.2f} % off the white; dark readings {:.3f} % of white apart",
                      100 * q.additivity, 100 * q.dark_spread);
  if (q.repeat_spread) text += fmt::format("; repeats {:.2f} % apart", 100 * *q.repeat_spread);
  text += "\ngamut         ";
  for (const gamut_comparison& g : q.gamut)
    text += fmt::format("{} {:.0f} %{}", g.name, 100 * g.coverage, &g == &q.gamut.back() ? " covered\n" : ", ");
  return text;
}

}  // namespace

int run_check(const check_options& o) {
  refuse_to_replace(o.output, o.force);
  const measurement_file file = measurements_of(o.source);
  const quality q = check_measurements(file.samples, file.known);
  std::vector<finding> findings = q.findings;
  if (!o.settings.empty()) merge_findings(findings, findings_with(read_settings_file(o.settings), file.samples));
  if (o.json) print_record(record_of(q, findings));
  const bool named = !o.output.empty() && o.output != "-";
  if (named || !o.json) write_output(o.output, text_of(q, findings), o.force);
  const bool serious = std::ranges::any_of(findings, [](const finding& f) { return f.level > severity::note; });
  return o.strict && serious ? status::findings : status::done;
}

}  // namespace corvantile::kit
