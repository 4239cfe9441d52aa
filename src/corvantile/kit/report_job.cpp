#include "corvantile/kit/report_job.hpp"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "corvantile/appraisal/gamut.hpp"
#include "corvantile/formats/writers/text_form.hpp"
#include "corvantile/kit/terminal.hpp"
#include "corvantile/utils/version.hpp"

namespace corvantile::kit {
namespace {

std::string white_in_words(const settings& set) {
  if (!matches_gray(set.mode)) return "white at " + in_words(set.xytable.white);
  if (set.temp >= 0) return fmt::format("grays at {:.0f} K", set.temp);
  return set.white ? "grays at " + in_words(*set.white) : "grays of the display's own white";
}

std::string primaries_in_words(const settings& set) {
  if (!solves_two_tables(set.mode)) return "the display's own primaries";
  for (const standard_gamut& s : standard_gamuts) {
    chromaticity_table asked = set.xytable;
    asked.white = s.xy.white;
    if (asked == s.xy) return fmt::format("{} primaries", s.name);
  }
  return "primaries as asked for";
}

std::string target_in_words(const opts& o) {
  const std::string curve =
      o.gamfile.empty() ? fmt::format("gamma {:.2f}", o.set.gamma) : "the curve of a gamma file";
  return fmt::format("{}, {}, {}", primaries_in_words(o.set), curve, white_in_words(o.set));
}

remake_record remake_of(const job& j, const nlohmann::ordered_json& record, const std::string& folder) {
  remake_record remake;
  for (const opts_entry& e : entries_of(j.inputs.names))
    if (!e.left_out) remake.settings.push_back({std::string(e.key), e.text});
  for (const char* part : {"inputs", "tables"})
    for (const auto& [name, sum] : record[part].items()) remake.checksums.push_back({name, sum.get<std::string>()});
  remake.version = "corvantile-kit " CORVANTILE_VERSION;
  remake.command = fmt::format("cd {} && Corvantile < settings.txt", folder);
  return remake;
}

}  // namespace

report_data report_of(const job& j, const quality& measurements, const nlohmann::ordered_json& record,
                      const report_words& words) {
  const provenance& known = j.file.known;
  const std::string name = known.display.empty() ? known.source : known.display;
  report_data data;
  data.display = !words.title.empty() ? words.title : name.empty() ? "Display" : name;
  data.mode = name_of(j.set().mode);
  data.target = target_in_words(j.inputs.names);
  if (!known.absolute.value_or(true)) data.unit = "relative";
  data.date = date_text(now());
  data.folder = words.folder;
  data.figures = j.figures;
  data.tables = tables_of(j.result);
  data.bits = j.set().nbits;
  data.measurements = measurements;
  data.findings = measurements.findings;
  append(data.findings, job_findings(j.result, j.set(), j.figures));
  sort_findings(data.findings);
  data.remake = remake_of(j, record, words.folder);
  return data;
}

}  // namespace corvantile::kit
