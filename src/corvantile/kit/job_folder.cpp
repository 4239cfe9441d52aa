#include "corvantile/kit/job_folder.hpp"

#include <algorithm>
#include <cstdint>
#include <iostream>
#include <string_view>
#include <utility>

#include "corvantile/driver/gamma_file.hpp"
#include "corvantile/driver/gray_factors_file.hpp"
#include "corvantile/driver/tables.hpp"
#include "corvantile/kit/files.hpp"
#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/number_scanner.hpp"
#include "corvantile/utils/text.hpp"
#include "corvantile/utils/version.hpp"

namespace corvantile::kit {
namespace {

using json = nlohmann::ordered_json;

constexpr const char* settings_name = "settings.txt";
constexpr const char* record_name = "job.json";
constexpr const char* measurements_name = "measurements.txt";
constexpr const char* gamma_name = "gamma.txt";

// What is no number, such as an infinity, is written as null.
json pair(const vec2& v) { return {v[0], v[1]}; }
json triple(const vec3& v) { return {v[0], v[1], v[2]}; }

json colour(const vec3& xyz) {
  const vec2 xy = chromaticity(xyz);
  return {{"XYZ", triple(xyz)}, {"xy", pair(xy)}, {"CCT", xyz2cct(xy)}};
}

json chromaticities_of(const chromaticity_table& t) {
  return {{"white", pair(t.white)}, {"red", pair(t.red)}, {"green", pair(t.green)}, {"blue", pair(t.blue)}};
}

json settings_record(const profile& p) {
  const settings& s = p.set;
  json record = {{"tlen", s.tlen},
                 {"nbits", s.nbits},
                 {"numsegs", s.numsegs},
                 {"minslope", s.minslope},
                 {"gamma", s.gamma},
                 {"gamfile", p.gamfile},
                 {"xytable", chromaticities_of(s.xytable)},
                 {"boundary_tol", s.boundary_tol},
                 {"lumfrac", s.lumfrac},
                 {"rowsum_margin", s.rowsum_margin},
                 {"temp", s.temp},
                 {"wptemp", s.wptemp},
                 {"alpha", s.alpha},
                 {"beta", s.beta},
                 {"hwid", s.hwid},
                 {"restart", s.restart},
                 {"grayfile", p.grayfile}};
  record["white"] = s.white ? pair(*s.white) : json(nullptr);
  return record;
}

json figures_record(const outcome& figures) {
  json record = {{"white",
                  {{"measured", colour(figures.white_before)},
                   {"corrected", colour(figures.white_after)},
                   {"wanted_xy", pair(figures.white_wanted)}}},
                 {"luminance", {{"before", figures.white_before[1]}, {"after", figures.white_after[1]}}},
                 {"black", {{"before", figures.black_before[1]}, {"after", figures.black_after[1]}}},
                 {"gray_ciede2000", {{"mean", figures.gray_mean}, {"max", figures.gray_largest}}}};
  if (figures.gamut) {
    record["primaries"] = {{"asked", chromaticities_of(figures.gamut->asked)},
                           {"reachable", chromaticities_of(figures.gamut->reachable)},
                           {"reached", chromaticities_of(figures.gamut->shown)},
                           {"moved_uv1960", triple(figures.gamut->moved)}};
  }
  return record;
}

json warnings_record(const correction& result) {
  json list = json::array();
  for (const warning& w : result.warnings) list.push_back({{"name", name_of(w.kind)}, {"message", w.message}});
  return list;
}

// The files that a folder holds besides its record, in an order that does not matter.
std::vector<text_file> input_files(const job_inputs& inputs) {
  std::vector<text_file> files{{settings_name, profile_text(inputs.names, inputs.why)},
                               {measurements_name, inputs.measurements}};
  if (inputs.gamma) files.push_back({gamma_name, *inputs.gamma});
  if (inputs.factors) files.push_back({gray_factors_name, *inputs.factors});
  return files;
}

// Table files by their plain names.
std::vector<text_file> tables_of(const solved_job& job) {
  std::vector<text_file> files = table_files(job.result, job.names);
  for (text_file& f : files) f.path.erase(0, job.names.outdir.size());
  return files;
}

json checksums(const std::vector<text_file>& files) {
  json sums = json::object();
  for (const text_file& f : files) sums[f.path] = checksum(f.text);
  return sums;
}

std::string input_of(const std::string& folder, const char* name) { return read_input(folder + '/' + name); }

// The comments of a settings file as `profile_text` lays it out, by key.
std::map<std::string, std::string, std::less<>> comments_in(const std::string& settings) {
  std::map<std::string, std::string, std::less<>> why;
  number_scanner lines(settings);
  while (const auto line = lines.next_line()) {
    const std::size_t equals = line->find(" = ");
    std::size_t comment = line->find("  ! ");
    while (comment < line->size() && std::ranges::count(line->substr(0, comment), '\'') % 2 != 0)  // within a text
      comment = line->find("  ! ", comment + 1);
    if (equals == std::string_view::npos || comment == std::string_view::npos) continue;
    why.emplace(trim(line->substr(2, equals - 2)), line->substr(comment + 4));
  }
  return why;
}

json read_record(const std::string& folder) {
  const std::string name = folder + '/' + record_name;
  json record = json::parse(read_input(name), nullptr, false);
  if (record.is_object() && record.contains("inputs") && record.contains("tables") && record["inputs"].is_object() &&
      record["tables"].is_object())
    return record;
  refuse_content(printable(name), "not the record of a job; 'corvantile-kit solve' makes such a folder");
}

void require_listed_files(const std::string& folder, const json& record) {
  for (const char* part : {"inputs", "tables"}) {
    for (const auto& [name, sum] : record[part].items()) {
      const bool plain = name.find('/') == std::string::npos;
      if (plain && sum == checksum(input_of(folder, name.c_str()))) continue;
      refuse_content(printable(std::string(folder).append(1, '/').append(name)),
                     "not the file that job.json lists: another job has written here, or somebody has edited it; "
                     "solve again");
    }
  }
}

}  // namespace

profile read_settings_file(const std::string& name) {
  profile p = read_profile(read_input(name));
  name_mode(p);
  fill_xytable(p.set, std::cerr);
  return p;
}

solved_job solve_job(const job_inputs& inputs) {
  solved_job job{.names = inputs.names,
                 .samples = parse_measurements(inputs.names.wgfile, inputs.measurements),
                 .tone = {},
                 .result = {},
                 .figures = {}};
  if (inputs.gamma) job.tone = parse_tone_samples(inputs.names.gamfile, *inputs.gamma);
  gray_factors factors;
  if (inputs.factors) factors = parse_gray_factors(inputs.names.grayfile, *inputs.factors);
  job.result = solve(job.names.set, job.samples, job.tone, factors);
  job.figures = outcome_of(job.result, job.names.set);
  return job;
}

nlohmann::ordered_json record_of(const job_inputs& inputs, const solved_job& job) {
  json record = {{"program", "corvantile-kit " CORVANTILE_VERSION},
                 {"mode", name_of(job.names.set.mode)},
                 {"settings", settings_record(job.names)},
                 {"inputs", checksums(input_files(inputs))},
                 {"tables", checksums(tables_of(job))},
                 {"warnings", warnings_record(job.result)},
                 {"figures", figures_record(job.figures)}};
  if (!inputs.refined.is_null()) record["refined"] = inputs.refined;
  return record;
}

std::vector<text_file> files_of(const job_inputs& inputs, const solved_job& job) {
  std::vector<text_file> files = input_files(inputs);
  for (text_file& table : tables_of(job)) files.push_back(std::move(table));
  files.push_back({record_name, record_of(inputs, job).dump(2) + '\n'});
  return files;
}

int round_of(const json& record) {
  if (!record.contains("refined")) return 1;
  constexpr int most = 1000;
  const json& refined = record["refined"];
  if (refined.is_object() && refined.contains("round") && refined["round"].is_number_integer()) {
    const auto round = refined["round"].get<std::int64_t>();
    if (round >= 2 && round <= most) return static_cast<int>(round);
  }
  refuse_content(record_name, "'refined' does not tell the round, 2 to " + std::to_string(most));
}

std::vector<std::string> listed_files(const json& record) {
  std::vector<std::string> names;
  for (const char* part : {"inputs", "tables"})
    for (const auto& file : record[part].items()) names.push_back(file.key());
  names.emplace_back(record_name);
  return names;
}

opened_job open_job(const std::string& folder) {
  json record = read_record(folder);
  require_listed_files(folder, record);
  const std::string settings_text = input_of(folder, settings_name);
  job_inputs inputs{.names = read_profile(settings_text),
                    .measurements = input_of(folder, measurements_name),
                    .gamma = {},
                    .why = comments_in(settings_text)};
  name_mode(inputs.names);
  if (!inputs.names.gamfile.empty()) inputs.gamma = input_of(folder, gamma_name);
  if (!inputs.names.grayfile.empty()) inputs.factors = input_of(folder, gray_factors_name);
  solved_job job = solve_job(inputs);
  // The same program gives the same bytes; another version, or another machine's sine, may not.
  if (checksums(tables_of(job)) != record["tables"]) {
    refuse_content(printable(folder),
                   "its job gives other tables with this program than job.json lists; solve again");
  }
  return {std::move(inputs), std::move(job), std::move(record)};
}

std::vector<std::string> warning_lines(const correction& result) {
  std::vector<std::string> lines;
  for (const warning& w : result.warnings) lines.push_back("Warning: " + w.message);
  return lines;
}

}  // namespace corvantile::kit
