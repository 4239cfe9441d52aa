// corvantile-kit refine: a second solve, corrected by what was measured behind the tables of the first.

#include <algorithm>
#include <filesystem>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "corvantile/colour/color_metrics.hpp"
#include "corvantile/driver/gray_factors_file.hpp"
#include "corvantile/job/refinement.hpp"
#include "corvantile/kit/exports.hpp"
#include "corvantile/kit/files.hpp"
#include "corvantile/kit/imported.hpp"
#include "corvantile/kit/job_folder.hpp"
#include "corvantile/kit/verbs.hpp"
#include "corvantile/readings/patches.hpp"
#include "corvantile/report/gather.hpp"
#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile::kit {
namespace {

namespace fs = std::filesystem;

constexpr const char* after_name = "after.txt";
constexpr const char* report_name = "report.html";

measured_gray gray_of(const patch& p) {
  return {.drive = is_full(p) ? 1 : p.drive[0], .xyz = p.xyz, .readings = p.rows.size()};
}

// The gray ramp among the readings. Those in another unit than the first ones, as one tells by the file or by a white
// twice as bright, are taken to be as bright as `white` at full drive.
measured_grays grays_of(const readings& after, const std::string& name, double white) {
  const sorted_readings sorted = sort_readings(after);
  measured_grays grays{.name = name, .levels = {}};
  if (sorted.dark)
    grays.levels.push_back({.drive = 0, .xyz = sorted.dark->xyz, .readings = sorted.dark->rows.size()});
  for (const patch& p : sorted.ramp[0]) grays.levels.push_back(gray_of(p));
  if (sorted.ramp[0].size() < 4) {
    refuse_content(printable(name),
                   "holds no gray ramp; measure the patches of 'corvantile-kit chart' with the correction loaded");
  }
  const double factor = white / grays.levels.back().xyz[1];
  if (after.absolute && factor > 0.5 && factor < 2) return grays;
  for (measured_gray& g : grays.levels) g.xyz = factor * g.xyz;
  return grays;
}

// Readings of a display that went another way than through the tables say nothing about them.
void heed(const measured_record& m, const refine_options& o) {
  if (o.anyway || (m.loaded != loading::none && m.loaded != loading::twice)) return;
  refuse_content(printable(o.after.source),
                 m.diagnosis[0] + " " + m.diagnosis[1] + " Measure again, or say --anyway.");
}

// How far the readings scatter about what was taken of them: CIEDE2000, mean.
double scatter_of(const measured_grays& grays, const refinement& found) {
  const vec3 white = found.smoothed.back();
  double sum = 0;
  for (std::size_t i = 0; i < grays.levels.size(); ++i) {
    sum += deltae2000_vec(xyz2lab_vec(grays.levels[i].xyz, white), xyz2lab_vec(found.smoothed[i], white));
  }
  return sum / static_cast<double>(grays.levels.size());
}

std::string round_folder(int round) { return "round-" + std::to_string(round); }

// What is kept of the round that `record` describes: its files, the readings behind it, and the rounds before it.
std::vector<text_file> kept(const std::string& folder, const nlohmann::ordered_json& record,
                            const std::string& after) {
  const int round = round_of(record);
  const std::string to = round_folder(round) + '/';
  std::vector<text_file> files;
  for (const std::string& name : listed_files(record))
    files.push_back({to + name, read_input(fs::path(folder) / name)});
  files.push_back({to + after_name, after});
  for (int r = 1; r < round; ++r) {
    std::error_code none;
    for (const fs::directory_entry& e : fs::directory_iterator(folder + '/' + round_folder(r), none)) {
      if (e.is_regular_file())
        files.push_back({round_folder(r) + '/' + e.path().filename().string(), read_input(e.path())});
    }
  }
  return files;
}

// Exports and report of the first tables would pass for those of the new ones: they go to the round that they are of.
std::vector<std::string> put_aside(const std::string& folder, const std::string& round) {
  std::vector<std::string> names{"exports", report_name};
  for (const export_format& f : export_formats()) names.emplace_back(f.usual_name);
  std::vector<std::string> moved;
  for (const std::string& name : names) {
    std::error_code failed;
    const fs::path from = fs::path(folder) / name, to = fs::path(folder) / round / name;
    if (!fs::exists(from, failed)) continue;
    fs::remove_all(to, failed);
    fs::rename(from, to, failed);
    if (!failed) moved.push_back(name);
  }
  return moved;
}

std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& w : words) text.append(text.empty() ? "" : ", ").append(w);
  return text;
}

// What a round found out, as CIEDE2000 means of the grays.
struct gray_figures {
  double measured, scatter, expected;
};

// What the next round's record says of this one.
nlohmann::ordered_json history_of(int round, const std::string& first_record, const std::string& after,
                                  const gray_figures& f) {
  const std::string aside = round_folder(round);
  return {{"round", round + 1},
          {"before", {{"folder", aside}, {"job.json", checksum(first_record)}}},
          {"measured", {{"file", aside + '/' + after_name}, {"checksum", checksum(after)}}},
          {"gray_ciede2000", {{"measured", f.measured}, {"scatter", f.scatter}, {"expected", f.expected}}}};
}

// The warnings that are new, and what came of it.
void tell(const refine_options& o, const correction& first, const correction& second, const gray_figures& f) {
  const std::vector<std::string> known = warning_lines(first);
  for (const std::string& line : warning_lines(second))
    if (std::ranges::count(known, line) == 0) say(o, line);
  say(o, "gray CIEDE2000 " + decimal(f.measured, 2) + " as measured, " + decimal(f.expected, 2) +
             " expected behind the new tables (single readings scatter by " + decimal(f.scatter, 2) + ')');
  if (f.measured <= 1.5 * f.scatter)
    say(o, "note: the grays missed their target by little more than that: expect no gain");
}

}  // namespace

int run_refine(const refine_options& o) {
  const bool in_place = o.output.empty();
  const std::string& folder = in_place ? o.folder : o.output;
  if (!in_place) refuse_to_replace(o.output, o.force);
  const opened_job first = open_job(o.folder);
  const solved_job& job = first.job;
  const int round = round_of(first.record);
  const std::string aside = round_folder(round);
  refuse_to_replace(folder + '/' + aside, o.force);

  const readings after = read_source(o.after);
  const measured_grays grays = grays_of(after, o.after.source, job.figures.white_after[1]);
  report_data judged;
  gather_measured(judged, source_of(job.result, job.names.set), after.rows);
  heed(*judged.measured, o);
  const refinement found = refine_grays(job.result, job.names.set, grays);

  job_inputs inputs = first.inputs;
  inputs.names.grayfile = gray_factors_name;
  inputs.factors = gray_factors_text(found.factors);
  inputs.why["grayfile"] = "what was measured behind the tables of " + aside;
  const solved_job second = solve_job(inputs);
  const gray_figures figures{judged.measured->grays.mean, scatter_of(grays, found), second.figures.gray_mean};
  const std::string after_text = read_input(o.after.source);
  inputs.refined = history_of(round, read_input(o.folder + "/job.json"), after_text, figures);

  std::vector<text_file> files = kept(o.folder, first.record, after_text);
  for (text_file& f : files_of(inputs, second)) files.push_back(std::move(f));
  write_folder(folder, std::move(files));
  const std::vector<std::string> moved = in_place ? put_aside(folder, aside) : std::vector<std::string>();

  tell(o, job.result, second.result, figures);
  say(o, folder + " holds the new tables, " + folder + '/' + aside + " the old ones" +
             (moved.empty() ? "" : " with " + joined(moved) + ": export again"));
  say(o, "Load them and measure again: corvantile-kit verify " + folder + " AFTER");
  if (o.json) print_record(record_of(inputs, second));
  return status::done;
}

}  // namespace corvantile::kit
