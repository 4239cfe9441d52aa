// corvantile-kit refine: a second solve, corrected by readings with the first tables loaded.

#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "corvantile/appraisal/verification.hpp"
#include "corvantile/colour/color_metrics.hpp"
#include "corvantile/documents/point_files.hpp"
#include "corvantile/job/refinement.hpp"
#include "corvantile/kit/exports.hpp"
#include "corvantile/kit/files.hpp"
#include "corvantile/kit/job_folder.hpp"
#include "corvantile/kit/verbs.hpp"
#include "corvantile/readings/patches.hpp"
#include "corvantile/report/wording.hpp"
#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile::kit {
namespace {

namespace fs = std::filesystem;

measured_gray gray_of(const patch& p) {
  return {.drive = is_full(p) ? 1 : p.drive[0], .xyz = p.xyz, .readings = p.rows.size()};
}

// The gray ramp among the readings. If the units differ, it is scaled so that white matches `white`.
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

// Refuses readings without the tables loaded: they say nothing about these.
void heed(const verification& v, const refine_options& o) {
  if (o.anyway || (v.loaded != load_state::none && v.loaded != load_state::twice)) return;
  const std::vector<std::string> diagnosis = diagnosis_of(v);
  refuse_content(printable(o.after.source),
                 fmt::format("{} {} Measure again, or say --anyway.", diagnosis[0], diagnosis[1]));
}

// How far the readings scatter about the smooth grays: mean CIEDE2000.
double scatter_of(const measured_grays& grays, const refinement& found) {
  const vec3 white = found.smoothed.back();
  double sum = 0;
  for (std::size_t i = 0; i < grays.levels.size(); ++i) {
    sum += deltae2000_vec(xyz2lab_vec(grays.levels[i].xyz, white), xyz2lab_vec(found.smoothed[i], white));
  }
  return sum / static_cast<double>(grays.levels.size());
}

// The files to keep of the round of `record`: its own, the readings after it, and those of the rounds before it.
std::vector<text_file> kept(const std::string& from, const nlohmann::ordered_json& record, const std::string& after) {
  const int round = round_of(record);
  const std::string to = folder::round(round) + '/';
  std::vector<text_file> files;
  for (const std::string& name : listed_files(record))
    files.push_back({to + name, read_input(fs::path(from) / name)});
  files.push_back({to + folder::after, after});
  for (int r = 1; r < round; ++r) {
    std::error_code none;
    for (const fs::directory_entry& e : fs::directory_iterator(from + '/' + folder::round(r), none)) {
      if (e.is_regular_file())
        files.push_back({folder::round(r) + '/' + e.path().filename().string(), read_input(e.path())});
    }
  }
  return files;
}

// Moves exports and report of the old tables to their round, because they would look like those of the new ones.
std::vector<std::string> put_aside(const std::string& in, const std::string& round) {
  std::vector<std::string> names{folder::exports, folder::report};
  for (const export_format& f : export_formats()) names.emplace_back(f.usual_name);
  std::vector<std::string> moved;
  for (const std::string& name : names) {
    std::error_code failed;
    const fs::path from = fs::path(in) / name, to = fs::path(in) / round / name;
    if (!fs::exists(from, failed)) continue;
    fs::remove_all(to, failed);
    fs::rename(from, to, failed);
    if (!failed) moved.push_back(name);
  }
  return moved;
}

// The figures of a round: mean CIEDE2000 of the grays.
struct gray_figures_of_round {
  double measured, scatter, expected;
};

// The part of the next record about this round.
nlohmann::ordered_json history_of(int round, const std::string& first_record, const std::string& after,
                                  const gray_figures_of_round& f) {
  const std::string aside = folder::round(round);
  return {{"round", round + 1},
          {"before", {{"folder", aside}, {"job.json", checksum(first_record)}}},
          {"measured", {{"file", aside + '/' + folder::after}, {"checksum", checksum(after)}}},
          {"gray_ciede2000", {{"measured", f.measured}, {"scatter", f.scatter}, {"expected", f.expected}}}};
}

// Prints new warnings and the figures.
void tell(const refine_options& o, const correction& first, const correction& second,
          const gray_figures_of_round& f) {
  const std::vector<std::string> known = warning_lines(first);
  for (const std::string& line : warning_lines(second))
    if (std::ranges::count(known, line) == 0) say(o, line);
  say(o, fmt::format("gray CIEDE2000 {:.2f} as measured, {:.2f} expected behind the new tables (single readings "
                     "scatter by {:.2f})",
                     f.measured, f.expected, f.scatter));
  if (f.measured <= 1.5 * f.scatter)
    say(o, "note: the grays were off by little more than that, so do not expect a gain");
}

}  // namespace

int run_refine(const refine_options& o) {
  const bool in_place = o.output.empty();
  const std::string& target = in_place ? o.folder : o.output;
  if (!in_place) refuse_to_replace(o.output, o.force);
  const auto [first, record] = open_job(o.folder);
  const int round = round_of(record);
  const std::string aside = folder::round(round);
  refuse_to_replace(target + '/' + aside, o.force);

  const readings after = read_source(o.after);
  const measured_grays grays = grays_of(after, o.after.source, first.figures.white_after.xyz[1]);
  const verification verified = verify(subject_of(first.result, first.set()), after, first.file.known);
  heed(verified, o);
  const refinement found = refine_grays(first.result, first.set(), grays);

  job_inputs inputs = first.inputs;
  inputs.names.grayfile = folder::gray_factors;
  inputs.factors = gray_factors_text(found.factors);
  inputs.why["grayfile"] = "measured with the tables of " + aside + " loaded";
  job second = solve_job(std::move(inputs));
  const gray_figures_of_round figures{verified.grays.mean, scatter_of(grays, found),
                                      second.figures.gray.difference_after.mean};
  const std::string after_text = read_input(o.after.source);
  second.inputs.refined = history_of(round, read_input(o.folder + '/' + folder::record), after_text, figures);

  const job_files made = files_of(second);
  std::vector<text_file> files = kept(o.folder, record, after_text);
  files.insert(files.end(), made.files.begin(), made.files.end());
  write_folder(target, std::move(files));
  const std::vector<std::string> moved = in_place ? put_aside(target, aside) : std::vector<std::string>();

  tell(o, first.result, second.result, figures);
  say(o, fmt::format("{0} holds the new tables, {0}/{1} the old ones{2}", target, aside,
                     moved.empty() ? "" : fmt::format(" with {}: export again", fmt::join(moved, ", "))));
  say(o, fmt::format("Load them and measure again: corvantile-kit verify {} AFTER", target));
  if (o.json) print_record(made.record);
  return status::done;
}

}  // namespace corvantile::kit
