#include "corvantile/kit/report_job.hpp"

#include <cmath>

#include "corvantile/appraisal/gamut.hpp"
#include "corvantile/formats/writers/text_form.hpp"
#include "corvantile/kit/dates.hpp"
#include "corvantile/kit/words.hpp"
#include "corvantile/report/gather.hpp"
#include "corvantile/utils/number_scanner.hpp"
#include "corvantile/utils/text.hpp"
#include "corvantile/utils/version.hpp"

namespace corvantile::kit {
namespace {

std::string white_in_words(const settings& set) {
  const auto xy = [](const vec2& v) { return "x " + decimal(v[0], 4) + ", y " + decimal(v[1], 4); };
  if (!matches_gray(set.mode)) return "white at " + xy(set.xytable.white);
  if (set.temp >= 0) return "grays at " + decimal(set.temp, 0) + " K";
  return set.white ? "grays at " + xy(*set.white) : "grays of the display's own white";
}

std::string primaries_in_words(const settings& set) {
  if (!solves_two_tables(set.mode)) return "the display's own primaries";
  for (const standard_gamut& s : standard_gamuts) {
    chromaticity_table asked = set.xytable;
    asked.white = s.xy.white;
    if (asked == s.xy) return std::string(s.name) + " primaries";
  }
  return "primaries as asked for";
}

std::string target_in_words(const profile& p) {
  const std::string curve = p.gamfile.empty() ? "gamma " + decimal(p.set.gamma, 2) : "the curve of a gamma file";
  return primaries_in_words(p.set) + ", " + curve + ", " + white_in_words(p.set);
}

trust_record trust_of(const solved_job& job, const checked& measured, const report_wishes& wishes) {
  const quality& q = measured.figures;
  trust_record trust;
  std::vector<finding> findings = q.findings;
  for (finding& f : findings_of_job(job.names.set, job.result, job.figures)) findings.push_back(std::move(f));
  sort_findings(findings);
  for (const finding& f : findings)
    trust.findings.push_back({f.id, std::string(name_of(f.level)), f.message, f.action});
  for (const prediction& p : q.accuracy.patches) trust.unseen.push_back({p.drive, p.difference});
  trust.additivity = 1 + q.additivity;
  trust.noise = q.noise.middle / 100;
  if (q.repeat_spread) trust.spread = *q.repeat_spread;
  trust.ramps = measured.known.ramps.empty() ? "The ramps of the file were taken as they are."
                                             : "Red, green and blue ramps: " + measured.known.ramps + ".";
  trust.how_to_measure =
      "corvantile-kit chart --verify 50 -o verify.ti1, measure it with the correction loaded, then corvantile-kit "
      "verify " +
      wishes.folder + " verify.ti3";
  return trust;
}

// "key = value" lines of a settings group, without their comments.
std::vector<text_pair> settings_of(const profile& p) {
  std::vector<text_pair> pairs;
  const std::string text = profile_text(p);
  number_scanner lines(text);
  while (const auto line = lines.next_line()) {
    const std::size_t equals = line->find(" = ");
    if (equals == std::string_view::npos) continue;
    pairs.push_back({std::string(line->substr(2, equals - 2)), std::string(line->substr(equals + 3))});
  }
  return pairs;
}

remake_record remake_of(const solved_job& job, const nlohmann::ordered_json& record, const report_wishes& wishes) {
  remake_record remake;
  remake.settings = settings_of(job.names);
  for (const char* part : {"inputs", "tables"})
    for (const auto& [name, sum] : record[part].items()) remake.checksums.push_back({name, sum.get<std::string>()});
  remake.version = "corvantile-kit " CORVANTILE_VERSION;
  remake.command = "cd " + wishes.folder + " && Corvantile < settings.txt";
  return remake;
}

// Whether two luminances of white are in the same unit where the files don't tell: near each other, and not the 100
// that stands for white in relative readings.
bool in_one_unit(double a, double b) {
  const auto is_relative = [](double white) { return std::abs(white - 100) < 0.5; };
  return a < 2 * b && b < 2 * a && !is_relative(a) && !is_relative(b);
}

}  // namespace

report_data report_of(const solved_job& job, const checked& measured, const nlohmann::ordered_json& record,
                      const report_wishes& wishes) {
  report_data data = gather_report(source_of(job.result, job.names.set));
  const std::string known = measured.known.display.empty() ? measured.known.source : measured.known.display;
  data.display = !wishes.title.empty() ? wishes.title : known.empty() ? "Display" : known;
  data.mode = name_of(job.names.set.mode);
  data.target = target_in_words(job.names);
  if (!measured.known.absolute.value_or(true)) data.unit = "relative";
  data.date = date_text(now());
  data.trust = trust_of(job, measured, wishes);
  data.remake = remake_of(job, record, wishes);
  return data;
}

void add_measured(report_data& data, const solved_job& job, const checked& measured, const readings& after) {
  gather_measured(data, source_of(job.result, job.names.set), after.rows);
  if (!data.measured) return;
  std::vector<std::string>& diagnosis = data.measured->diagnosis;
  if (after.calibration && !measured.known.calibration) {
    diagnosis.emplace_back(
        "A video calibration was in effect during this measurement, but not during the first. Unless it is the "
        "correction itself, it acts on top of that: clear it (dispwin -c) and measure again.");
  }
  if (!after.calibration && measured.known.calibration) {
    diagnosis.emplace_back(
        "The first measurement went through a video calibration, this one did not: formats that leave the "
        "calibration in force need it loaded.");
  }
  constexpr double steady = 0.03;
  const double read = data.measured->white.luminance;
  const double change = read / job.figures.white_after[1] - 1;
  const bool absolute = after.absolute && measured.known.absolute.value_or(false);
  if ((absolute || in_one_unit(job.figures.white_before[1], read)) && std::abs(change) > steady) {
    diagnosis.emplace_back("White is " + percent(std::abs(change), 0) + (change < 0 ? " darker" : " brighter") +
                           " than predicted. The display has drifted since the first measurement (warm-up, its "
                           "brightness setting, ambient light sensor), or it dims bright pictures: the other figures "
                           "here leave that out.");
  }
}

}  // namespace corvantile::kit
