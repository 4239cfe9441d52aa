// corvantile-kit check: whether measurements can be trusted, and what a job would do with them.

#include "corvantile/appraisal/check.hpp"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "corvantile/kit/checked.hpp"
#include "corvantile/kit/files.hpp"
#include "corvantile/kit/imported.hpp"
#include "corvantile/kit/job_folder.hpp"
#include "corvantile/kit/verbs.hpp"
#include "corvantile/kit/words.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile::kit {
namespace {

using json = nlohmann::ordered_json;

json figures(const difference_figures& f) { return {{"n", f.n}, {"mean", f.mean}, {"p95", f.p95}, {"max", f.max}}; }

json record_of(const quality& q, const std::vector<finding>& findings) {
  json record = {{"additivity", q.additivity}, {"dark_spread", q.dark_spread}};
  record["repeat_spread"] = q.repeat_spread ? json(*q.repeat_spread) : json(nullptr);
  record["accuracy"] = {{"unseen", figures(q.accuracy.unseen)},
                        {"near_gray", figures(q.accuracy.near_gray)},
                        {"white_ramp", figures(q.accuracy.white_ramp)}};
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
  if (f.n == 0) return std::string(what) + "none";
  return std::string(what) + "mean " + decimal(f.mean, 2) + ", 95 % within " + decimal(f.p95, 2) + ", largest " +
         decimal(f.max, 2) + " (" + std::to_string(f.n) + " patches)";
}

std::string text_of(const quality& q, const std::vector<finding>& findings) {
  std::string text;
  for (const finding& f : findings) {
    text += std::string(name_of(f.level)) + ": " + f.id + '\n' + wrapped(f.message, 4);
    if (!f.action.empty()) text += wrapped("-> " + f.action, 4);
  }
  text += "\nwhite         x " + decimal(q.white_xy[0], 4) + ", y " + decimal(q.white_xy[1], 4) + ", " +
          decimal(q.white_cct, 0) + " K, " + decimal(q.white_from_d65, 4) + " u'v' from D65\n";
  text += "luminance     " + decimal(q.white[1], 1) + ", contrast " +
          (std::isfinite(q.contrast) ? decimal(q.contrast, 0) + " : 1" : std::string("unknown (dark of 0)")) + '\n';
  text += "model against samples, CIEDE2000\n";
  text += accuracy_line("  unseen      ", q.accuracy.unseen) + '\n';
  text += accuracy_line("  near gray   ", q.accuracy.near_gray) + '\n';
  text += accuracy_line("  white ramp  ", q.accuracy.white_ramp) + '\n';
  text += "channels' sum " + decimal(100 * q.additivity, 2) + " % off the white; dark readings " +
          decimal(100 * q.dark_spread, 3) + " % of white apart" +
          (q.repeat_spread ? "; repeats " + decimal(100 * *q.repeat_spread, 2) + " % apart" : "") + '\n';
  text += "gamut         ";
  for (const gamut_comparison& g : q.gamut)
    text += std::string(g.name) + " " + decimal(100 * g.coverage, 0) + " %" + (&g == &q.gamut.back() ? "" : ", ");
  return text + " covered\n";
}

}  // namespace

int run_check(const check_options& o) {
  refuse_to_replace(o.output, o.force);
  const checked c = check_source(o.source);
  std::vector<finding> findings = c.figures.findings;
  if (!o.settings.empty()) merge_findings(findings, plan_findings(read_settings_file(o.settings), c.samples));
  if (o.json) print_record(record_of(c.figures, findings));
  const bool named = !o.output.empty() && o.output != "-";
  if (named || !o.json) write_output(o.output, text_of(c.figures, findings), o.force);
  const bool serious = std::ranges::any_of(findings, [](const finding& f) { return f.level > severity::note; });
  return o.strict && serious ? status::findings : status::done;
}

}  // namespace corvantile::kit
