// corvantile-kit make: the one command, from what an instrument wrote to what a device loads.

#include <algorithm>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <iostream>
#include <nlohmann/json.hpp>
#include <string>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

#include "corvantile/kit/checked.hpp"
#include "corvantile/kit/exports.hpp"
#include "corvantile/kit/files.hpp"
#include "corvantile/kit/imported.hpp"
#include "corvantile/kit/job_folder.hpp"
#include "corvantile/kit/loading.hpp"
#include "corvantile/kit/report_job.hpp"
#include "corvantile/kit/targets.hpp"
#include "corvantile/kit/verbs.hpp"
#include "corvantile/kit/words.hpp"
#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile::kit {
namespace {

// A line for each step with its time, where people look on.
class progress {
 public:
  explicit progress(bool quiet) : shown_(!quiet && ::isatty(STDERR_FILENO) != 0) {}
  template <class Step>
  auto operator()(const char* name, const Step& step) {
    if (shown_) std::cerr << name << " ..." << std::flush;
    const auto start = std::chrono::steady_clock::now();
    struct line_end {  // also behind a step that fails
      bool shown;
      ~line_end() {
        if (shown) std::cerr << '\n';
      }
    } end{shown_};
    auto result = step();
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    if (shown_) std::cerr << ' ' << decimal(took.count(), 2) << " s";
    return result;
  }

 private:
  bool shown_;
};

// Formats that could not be written, and why: several have one reason.
class omissions {
 public:
  void add(const std::string& format, std::string why) {
    const std::string prefix = "Format " + format + ": ";
    if (why.starts_with(prefix)) why.erase(0, prefix.size());
    const auto same = std::ranges::find(list_, why, &std::pair<std::string, std::string>::second);
    if (same == list_.end()) {
      list_.emplace_back(format, why);
    } else {
      same->first += ", " + format;
    }
  }
  std::vector<std::string> lines() const {
    std::vector<std::string> lines;
    for (const auto& [formats, why] : list_) lines.push_back(std::string(formats).append(": ").append(why));
    return lines;
  }

 private:
  std::vector<std::pair<std::string, std::string>> list_;
};

// The exports of a job, as files of its folder. A format of "all" that cannot hold the job is left out; of a device
// that was asked for by name none may be missing.
std::vector<text_file> exports_of(const make_options& o, const solved_job& job, const provenance& known,
                                  omissions& left_out) {
  std::vector<text_file> files;
  for (const std::string& wanted : formats_for(o.wanted.device, job.names.set.mode)) {
    const export_format& format = format_named(wanted);
    export_options how;
    how.format = format.name;
    how.title = o.display;
    try {
      const exported made = export_job(job, known, how);
      for (const file_content& f : made.files) {
        std::string path = "exports/";
        if (!format.one_file) path.append(format.usual_name).append("/");
        files.push_back({path.append(f.name), f.bytes});
      }
    } catch (const failure& f) {
      if (f.kind != fault::inexpressible || o.wanted.device != "all") throw;
      left_out.add(format.name, f.message);
    }
  }
  return files;
}

// Exports of the job that was there before would pass for those of this one.
void remove_other_exports(const std::string& folder, const std::vector<text_file>& written) {
  std::error_code ignored;
  for (const export_format& format : export_formats()) {
    const std::string name = std::string("exports/") + format.usual_name;
    const auto belongs = [&](const text_file& f) { return f.path == name || f.path.starts_with(name + '/'); };
    if (std::ranges::none_of(written, belongs))
      std::filesystem::remove_all(std::filesystem::path(folder) / name, ignored);
  }
}

// Why grays may end off their target.
std::string likely_reason(const solved_job& job) {
  if (!job.result.warnings.empty()) return "the warnings above tell why";
  if (!matches_gray(job.names.set.mode))
    return "the channels change their colour along their ramps, which one matrix cannot follow; tables with a gray "
           "match can, which Windows has no room for";
  return "the display does not reach this target's white, or holds too few levels; the report shows where";
}

std::string verdict_of(const solved_job& job) {
  constexpr double visible = 1;  // CIEDE2000
  const outcome& f = job.figures;
  const double kept = f.white_before[1] > 0 ? 100 * f.white_after[1] / f.white_before[1] : 0;
  std::string line = "By the model, grays come to CIEDE2000 " + decimal(f.gray_mean, 2) +
                     " of their target on average (" + decimal(f.gray_largest, 2) + " at most)" +
                     (f.gray_mean > visible ? ", which is visible: " + likely_reason(job) : "") +
                     "; the white keeps " + decimal(kept, 0) + " % of its luminance";
  if (f.gamut) {
    const double most = std::ranges::max(f.gamut->moved.v);
    line += most > 0 ? "; primaries out of reach were moved by up to " + decimal(most, 3) + " uv"
                     : "; all primaries are reached";
  }
  return line + '.';
}

// Stops where the measurements are not worth solving.
void heed(const make_options& o, const checked& c) {
  for (const finding& f : c.figures.findings) {
    if (f.level == severity::note) continue;
    say(o, std::string(name_of(f.level)) + ": " + f.message + (f.action.empty() ? "" : "; " + f.action));
  }
  if (o.anyway || c.figures.findings.empty() || c.figures.findings.front().level != severity::error) return;
  const finding& worst = c.figures.findings.front();
  refuse_content(c.known.source,
                 worst.id + ": " + worst.message + "; " + worst.action + " (--anyway solves all the same)");
}

// What was left out, and the three lines that it ends with.
void tell(const make_options& o, const solved_job& job, const omissions& left_out) {
  for (const std::string& line : warning_lines(job.result)) say(o, line);
  for (const std::string& line : left_out.lines()) say(o, "Left out: " + line);
  say(o, verdict_of(job));
  say(o, loading_advice(o.output, o.wanted.device, job.names.set.mode));
  say(o, "The report is " + o.output + "/report.html.");
}

nlohmann::ordered_json with_files(nlohmann::ordered_json record, const std::string& folder,
                                  const std::vector<text_file>& files, const omissions& left_out) {
  record["folder"] = folder;
  record["files"] = nlohmann::ordered_json::array();
  for (const text_file& f : files) record["files"].push_back(f.path);
  record["left_out"] = left_out.lines();
  return record;
}

std::string usual_folder(const std::string& source) {
  const std::string stem = std::filesystem::path(source).stem().string();
  return (stem == "-" ? "display" : stem) + "-corrected";
}

}  // namespace

int run_make(make_options o) {
  if (o.output.empty()) o.output = usual_folder(o.source.source);
  refuse_to_replace(o.output, o.force);
  progress step(o.quiet);

  const imported in = step("import", [&] { return import_measurements(o.source); });
  const checked c = step("check", [&] {
    return checked{in.choice.data, in.known, check_measurements(in.choice.data, in.known)};
  });
  heed(o, c);
  const plan p = plan_for(o.wanted, in.choice.data);
  const job_inputs inputs{.names = p.names, .measurements = in.text, .gamma = p.gamma, .why = p.why};
  const solved_job job = step("solve", [&] { return solve_job(inputs); });
  omissions left_out;
  std::vector<text_file> files = files_of(inputs, job);
  for (text_file& f : step("export", [&] { return exports_of(o, job, in.known, left_out); }))
    files.push_back(std::move(f));
  const report_data page = step(
      "report", [&] { return report_of(job, c, record_of(inputs, job), {.title = o.display, .folder = o.output}); });
  files.push_back({"report.html", report_page(page)});
  write_folder(o.output, files);
  remove_other_exports(o.output, files);

  tell(o, job, left_out);
  if (o.json) print_record(with_files(record_of(inputs, job), o.output, files, left_out));
  return status::done;
}

}  // namespace corvantile::kit
