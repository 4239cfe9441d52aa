#include "corvantile/kit/checked.hpp"

#include <optional>
#include <utility>

#include "corvantile/appraisal/outcome.hpp"
#include "corvantile/appraisal/plan.hpp"
#include "corvantile/driver/gamma_file.hpp"
#include "corvantile/driver/gray_factors_file.hpp"
#include "corvantile/formats/detect.hpp"
#include "corvantile/job/correction.hpp"
#include "corvantile/kit/files.hpp"

namespace corvantile::kit {
namespace {

bool is_our_own(const source_options& o, std::string_view text) {
  if (!o.from.empty()) return o.from == "corvantile";
  return kind_of(text) == source_kind::corvantile;
}

}  // namespace

checked check_source(const source_options& o) {
  checked c;
  const std::string text = read_input(o.source);
  if (is_our_own(o, text) && o.ramps == "auto") {
    c.samples = parse_measurements(o.source == "-" ? "standard input" : o.source, text);
    c.known = parse_provenance(text);
  } else {
    imported in = import_measurements(o);
    c.samples = std::move(in.choice.data);
    c.known = std::move(in.known);
  }
  c.figures = check_measurements(c.samples, c.known);
  return c;
}

std::vector<finding> plan_findings(const profile& p, const measurements& samples) {
  std::optional<tone_samples> tone;
  if (!p.gamfile.empty()) tone = parse_tone_samples(p.gamfile, read_input(p.gamfile));
  gray_factors factors;
  if (!p.grayfile.empty()) factors = parse_gray_factors(p.grayfile, read_input(p.grayfile));
  const correction result = solve(p.set, samples, tone, factors);
  return findings_of_job(p.set, result, outcome_of(result, p.set));
}

std::vector<finding> findings_of_job(const settings& set, const correction& result, const outcome& figures) {
  std::vector<finding> findings = check_plan(set, figures);
  std::vector<finding> warned;
  for (const warning& w : result.warnings) warned.push_back(finding_of(w));
  merge_findings(findings, std::move(warned));
  return findings;
}

}  // namespace corvantile::kit
