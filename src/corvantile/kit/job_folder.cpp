#include "corvantile/kit/job_folder.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fmt/format.h>
#include <system_error>
#include <utility>

#include "corvantile/documents/table_files.hpp"
#include "corvantile/kit/files.hpp"
#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/number_scanner.hpp"
#include "corvantile/utils/text.hpp"
#include "corvantile/utils/version.hpp"

namespace corvantile::kit {
namespace {

using json = nlohmann::ordered_json;

// ---- The record ----

// Infinity and NaN become null.
json pair(const vec2& v) { return {v[0], v[1]}; }
json triple(const vec3& v) { return {v[0], v[1], v[2]}; }

json chromaticities(const chromaticity_table& t) {
  return {{"white", pair(t.white)}, {"red", pair(t.red)}, {"green", pair(t.green)}, {"blue", pair(t.blue)}};
}

json value_record(const opts_value& value) {
  struct {
    json operator()(const chromaticity_table& t) const { return chromaticities(t); }
    json operator()(const std::optional<vec2>& xy) const { return xy ? pair(*xy) : json(nullptr); }
    json operator()(const std::string& text) const { return text; }
    json operator()(int i) const { return i; }
    json operator()(bool on) const { return on; }
    json operator()(double v) const { return v; }
    json operator()(gamut_mapping m) const { return name_of(m); }
  } of;
  return std::visit(of, value);
}

json settings_record(const opts& o) {
  json record;
  for (const opts_entry& e : entries_of(o)) record[std::string(e.key)] = value_record(e.value);
  for (const char* elsewhere : {"cvmode", "outdir", "wgfile"}) record.erase(elsewhere);
  return record;
}

json colour(const white_figures& w) { return {{"XYZ", triple(w.xyz)}, {"xy", pair(w.xy)}, {"CCT", w.cct}}; }

json figures_record(const job_figures& f) {
  const white_figures &before = f.white_before, &after = f.white_after;
  json record = {
      {"white", {{"measured", colour(before)}, {"corrected", colour(after)}, {"wanted_xy", pair(f.white_asked)}}},
      {"luminance", {{"before", before.xyz[1]}, {"after", after.xyz[1]}}},
      {"black", {{"before", before.black[1]}, {"after", after.black[1]}}},
      {"gray_ciede2000", {{"mean", f.gray.difference_after.mean}, {"max", f.gray.difference_after.max}}}};
  if (!f.gamut.asked) return record;
  record["primaries"] = {{"asked", chromaticities(*f.gamut.asked)},
                         {"reachable", chromaticities(f.gamut.reachable.value_or(*f.gamut.asked))},
                         {"reached", chromaticities(f.gamut.after)},
                         {"moved_uv1960", triple(f.gamut.moved)},
                         {"missed_uv1976", triple(f.gamut.missed)}};
  return record;
}

json verdict_record(const verdict& v) {
  const auto group = [](const group_verdict& g) { return json{{"before", g.before.mean}, {"expected", g.expected}}; };
  return {{"gray", group(v.gray)},
          {"colours", group(v.colours)},
          {"coverage", {{"before", v.coverage_before}, {"after", v.coverage_after}}},
          {"luminance_kept", v.luminance_kept},
          {"better", v.better()}};
}

json warnings_record(const correction& result) {
  json list = json::array();
  for (const finding& f : result.warnings) list.push_back({{"name", f.id}, {"message", text_of(f)}});
  return list;
}

json checksums(const std::vector<text_file>& files) {
  json sums = json::object();
  for (const text_file& f : files) sums[f.path] = checksum(f.text);
  return sums;
}

std::vector<text_file> input_files(const job_inputs& in) {
  std::vector<text_file> files{{folder::settings, opts_text(in.names, in.why)},
                               {folder::measurements, in.measurements}};
  if (in.gamma) files.push_back({folder::gamma, *in.gamma});
  if (in.factors) files.push_back({folder::gray_factors, *in.factors});
  return files;
}

// The tables, with names relative to the folder.
std::vector<text_file> plain_table_files(const job& j) {
  std::vector<text_file> files = table_files(j.result, j.inputs.names);
  for (text_file& f : files) f.path.erase(0, j.inputs.names.outdir.size());
  return files;
}

// ---- Opening ----

std::string path_in(const std::string& folder, const std::string& name) { return folder + '/' + name; }

json read_record(const std::string& folder) {
  const std::string name = path_in(folder, folder::record);
  json record = json::parse(read_input(name), nullptr, false);
  const auto lists = [&](const char* part) { return record.contains(part) && record[part].is_object(); };
  if (record.is_object() && lists("inputs") && lists("tables")) return record;
  refuse_content(printable(name), "not the record of a job; 'corvantile-kit solve' makes such a folder");
}

// The listed files of one part of the record.
std::vector<text_file> read_listed(const std::string& folder, const json& part) {
  std::vector<text_file> files;
  for (const auto& [name, sum] : part.items()) {
    const bool plain = name.find('/') == std::string::npos;
    if (plain) files.push_back({name, read_input(path_in(folder, name))});
    if (plain && sum == checksum(files.back().text)) continue;
    refuse_content(printable(path_in(folder, name)),
                   "not the file that job.json lists: another job has written here, or somebody has edited it; solve "
                   "again");
  }
  return files;
}

std::optional<std::string> text_in(const std::vector<text_file>& files, const char* name) {
  const auto found = std::ranges::find(files, name, &text_file::path);
  return found == files.end() ? std::nullopt : std::optional(found->text);
}

std::string required(const std::vector<text_file>& files, const std::string& folder, const char* name) {
  if (auto text = text_in(files, name)) return std::move(*text);
  refuse_content(printable(path_in(folder, folder::record)), fmt::format("does not list {}", name));
}

// On another machine the last digits of sines differ, so searches may end at slightly different points.
bool agree(const std::string& a, const std::string& b, double within) {
  number_scanner first(a), second(b);
  while (true) {
    double x = 0, y = 0;
    const auto found = first.next(x);
    if (found != second.next(y)) return false;
    if (found != number_scanner::result::number) return found == number_scanner::result::end;
    const bool same = x == y || (std::isnan(x) && std::isnan(y));
    if (!same && !(std::abs(x - y) <= within)) return false;
  }
}

bool agree(const std::vector<text_file>& solved, const std::vector<text_file>& listed, const settings& set) {
  constexpr double rounding = 1e-12;  // of the files' decimals
  const double within = set.nbits > 0 ? 1 : 1e-9 + rounding;
  return solved.size() == listed.size() && std::ranges::all_of(solved, [&](const text_file& table) {
           const auto text = text_in(listed, table.path.c_str());
           return text && (*text == table.text || agree(table.text, *text, within));
         });
}

job_inputs inputs_in(const std::string& folder, const std::vector<text_file>& files, const json& record) {
  job_inputs in{.names = read_opts(required(files, folder, folder::settings)),
                .why = {},
                .measurements = required(files, folder, folder::measurements)};
  name_mode(in.names);
  if (!in.names.gamfile.empty()) in.gamma = required(files, folder, folder::gamma);
  if (!in.names.grayfile.empty()) in.factors = required(files, folder, folder::gray_factors);
  if (record.contains("reasons") && record["reasons"].is_object()) {
    for (const auto& [key, why] : record["reasons"].items())
      if (why.is_string()) in.why.emplace(key, why.get<std::string>());
  }
  if (record.contains("refined")) in.refined = record["refined"];
  return in;
}

}  // namespace

std::string folder::round(int n) { return fmt::format("round-{}", n); }

job_files files_of(const job& j, const verdict* judged) {
  const std::vector<text_file> inputs = input_files(j.inputs), tables = plain_table_files(j);
  json record = {{"program", "corvantile-kit " CORVANTILE_VERSION},
                 {"mode", name_of(j.set().mode)},
                 {"settings", settings_record(j.inputs.names)},
                 {"reasons", j.inputs.why},
                 {"inputs", checksums(inputs)},
                 {"tables", checksums(tables)},
                 {"warnings", warnings_record(j.result)},
                 {"figures", figures_record(j.figures)}};
  if (judged != nullptr) record["verdict"] = verdict_record(*judged);
  if (!j.inputs.refined.is_null()) record["refined"] = j.inputs.refined;

  job_files made{inputs, std::move(record)};
  made.files.insert(made.files.end(), tables.begin(), tables.end());
  made.files.push_back({folder::record, made.record.dump(2) + '\n'});
  return made;
}

bool is_job_folder(const std::string& folder) {
  std::error_code none;
  return std::filesystem::exists(path_in(folder, folder::record), none);
}

int round_of(const json& record) {
  if (!record.contains("refined")) return 1;
  constexpr int most = 1000;
  const json& refined = record["refined"];
  if (refined.is_object() && refined.contains("round") && refined["round"].is_number_integer()) {
    const auto round = refined["round"].get<std::int64_t>();
    if (round >= 2 && round <= most) return static_cast<int>(round);
  }
  refuse_content(folder::record, fmt::format("'round' in 'refined' must be an integer from 2 to {}", most));
}

std::vector<std::string> listed_files(const json& record) {
  std::vector<std::string> names;
  for (const char* part : {"inputs", "tables"})
    for (const auto& file : record[part].items()) names.push_back(file.key());
  names.emplace_back(folder::record);
  return names;
}

opened_job open_job(const std::string& folder) {
  json record = read_record(folder);
  const std::vector<text_file> inputs = read_listed(folder, record["inputs"]);
  const std::vector<text_file> tables = read_listed(folder, record["tables"]);
  job solved = solve_job(inputs_in(folder, inputs, record));
  if (!agree(plain_table_files(solved), tables, solved.set())) {
    refuse_content(printable(folder),
                   "this program makes other tables of this job than job.json lists; solve it again");
  }
  return {std::move(solved), std::move(record)};
}

std::vector<std::string> warning_lines(const correction& result) {
  std::vector<std::string> lines;
  for (const finding& f : result.warnings) lines.push_back("Warning: " + text_of(f));
  return lines;
}

}  // namespace corvantile::kit
