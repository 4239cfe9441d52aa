// corvantile-kit make: the one command, from an instrument's file to what a device loads.

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fmt/format.h>
#include <iostream>
#include <nlohmann/json.hpp>
#include <string>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

#include "corvantile/appraisal/check.hpp"
#include "corvantile/appraisal/verdict.hpp"
#include "corvantile/kit/exports.hpp"
#include "corvantile/kit/files.hpp"
#include "corvantile/kit/job_folder.hpp"
#include "corvantile/kit/report_job.hpp"
#include "corvantile/kit/verbs.hpp"
#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile::kit {
namespace {

// Prints a line with the time of each step, if standard error is a terminal.
class progress {
 public:
  explicit progress(bool quiet) : shown_(!quiet && ::isatty(STDERR_FILENO) != 0) {}
  template <class Step>
  auto operator()(const char* name, const Step& step) {
    if (shown_) std::cerr << name << " ..." << std::flush;
    const auto start = std::chrono::steady_clock::now();
    struct line_end {  // also after a step that fails
      bool shown;
      ~line_end() {
        if (shown) std::cerr << '\n';
      }
    } end{shown_};
    auto result = step();
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    if (shown_) std::cerr << fmt::format(" {:.2f} s", took.count());
    return result;
  }

 private:
  bool shown_;
};

// Formats that could not be written, by reason.
class omissions {
 public:
  void add(const std::string& format, const std::string& why) {
    const auto same = std::ranges::find(list_, why, &std::pair<std::string, std::string>::second);
    if (same == list_.end()) {
      list_.emplace_back(format, why);
    } else {
      same->first += ", " + format;
    }
  }
  std::vector<std::string> lines() const {
    std::vector<std::string> lines;
    for (const auto& [formats, why] : list_) lines.push_back(formats + ": " + why);
    return lines;
  }

 private:
  std::vector<std::pair<std::string, std::string>> list_;
};

// The exports of a job, as files of its folder. For "all", formats that cannot hold the job are left out. For a
// single device, they are an error.
std::vector<text_file> exports_of(const make_options& o, const job& j, omissions& left_out) {
  std::vector<text_file> files;
  for (const std::string& wanted : formats_for(o.wanted.for_device, j.set().mode)) {
    const export_format& format = format_named(wanted);
    export_options how;
    how.format = format.name;
    how.title = o.display;
    try {
      const exported made = export_job(j, how);
      const std::string place =
          fmt::format("{}/{}", folder::exports, format.one_file ? "" : fmt::format("{}/", format.usual_name));
      for (const file_content& f : made.files) files.push_back({place + f.name, f.bytes});
    } catch (const format_refusal& refused) {
      if (o.wanted.for_device != device::all) throw;
      left_out.add(format.name, refused.why);
    }
  }
  return files;
}

// Otherwise, exports of an earlier job in this folder would look like those of this one.
void remove_other_exports(const std::string& target, const std::vector<text_file>& written) {
  std::error_code ignored;
  for (const export_format& format : export_formats()) {
    const std::string name = std::string(folder::exports) + '/' + format.usual_name;
    const auto belongs = [&](const text_file& f) { return f.path == name || f.path.starts_with(name + '/'); };
    if (std::ranges::none_of(written, belongs))
      std::filesystem::remove_all(std::filesystem::path(target) / name, ignored);
  }
}

const char* likely_reason(const job& j) {
  if (!j.result.warnings.empty()) return "see the warnings above";
  if (!matches_gray(j.set().mode))
    return "the channels change their colour along their ramps, and one matrix cannot follow; tables with a gray "
           "match "
           "can, but Windows has no room for them";
  return "the display does not reach this target's white, or has too few levels; the report shows where";
}

std::string verdict_line(const job& j) {
  constexpr double visible = 1;  // CIEDE2000
  const job_figures& f = j.figures;
  const difference_summary& grays = f.gray.difference_after;
  std::string line =
      fmt::format("By the model, grays come within CIEDE2000 {:.2f} of their target on average ({:.2f} at most)",
                  grays.mean, grays.max);
  if (grays.mean > visible) line += fmt::format(", which is visible: {}", likely_reason(j));
  line +=
      fmt::format("; the white keeps {:.0f} % of its luminance", 100 * f.white_after.xyz[1] / f.white_before.xyz[1]);
  if (f.gamut.asked) {
    constexpr double seen = 0.002;
    const double most = std::ranges::max(f.gamut.missed.v);
    line += most < seen     ? "; all primaries are reached"
            : f.gamut.clips ? fmt::format("; primaries out of reach miss by up to {:.3f} u'v'", most)
                            : fmt::format("; primaries out of reach were moved by up to {:.3f} u'v'", most);
  }
  return line + '.';
}

// What to expect, before and after. A correction that gains nothing is said to gain nothing.
std::string expectation(const verdict& v) {
  const auto words = [](const char* what, const group_verdict& g) {
    return fmt::format("{} {:.2f} without the correction, {:.2f} with it", what, g.before.mean, g.expected);
  };
  constexpr double visible = 0.5;  // CIEDE2000
  std::string line;
  if (!v.better())
    line = std::max(v.gray.before.mean, v.colours.before.mean) < visible
               ? "The display meets the target without a correction. "
               : "This correction is not better than none. ";
  line += fmt::format("Mean CIEDE2000 from the target: {}; {}", words("grays", v.gray), words("colours", v.colours));
  if (!v.gray.unseen || !v.colours.unseen)
    line += "; by the model alone, because too few patches besides the ramps were measured (chart --verify 50)";
  return line + '.';
}

// Prints the findings, and stops if the measurements are useless.
void heed(const make_options& o, const std::string& source, const std::vector<finding>& findings) {
  for (const finding& f : findings) {
    if (f.level == severity::note) continue;
    say(o, fmt::format("{}: {}{}{}", name_of(f.level), f.message, f.action.empty() ? "" : "; ", f.action));
  }
  if (o.anyway || findings.empty() || findings.front().level != severity::error) return;
  const finding& worst = findings.front();
  refuse_content(source,
                 fmt::format("{}: {}; {} (--anyway solves it nevertheless)", worst.id, worst.message, worst.action));
}

// Prints what to expect, warnings, what was left out, and the three last lines.
void tell(const make_options& o, const job& j, const verdict& judged, const omissions& left_out) {
  say(o, expectation(judged));
  for (const std::string& line : warning_lines(j.result)) say(o, line);
  for (const std::string& line : left_out.lines()) say(o, "Left out: " + line);
  say(o, verdict_line(j));
  say(o, loading_advice(o.output, o.wanted.for_device, j.set().mode));
  say(o, fmt::format("The report is {}/{}.", o.output, folder::report));
}

nlohmann::ordered_json with_files(nlohmann::ordered_json record, const std::string& target,
                                  const std::vector<text_file>& files, const omissions& left_out) {
  record["folder"] = target;
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

  const import_result in = step("import", [&] { return import_source(o.source); });
  const quality checked = step("check", [&] { return check_measurements(in.file.samples, in.file.known); });
  heed(o, in.file.known.source, checked.findings);
  job_inputs inputs = inputs_for(o.wanted, in.file.samples);
  inputs.measurements = in.text;
  const job solved = step("solve", [&] { return solve_job(std::move(inputs)); });
  const verdict judged = judge(subject_of(solved.result, solved.set()), checked.accuracy, checked.derived_ramps);
  job_files made = files_of(solved, &judged);
  std::vector<text_file>& files = made.files;
  omissions left_out;
  for (text_file& f : step("export", [&] { return exports_of(o, solved, left_out); })) files.push_back(std::move(f));
  files.push_back({folder::report, step("report", [&] {
                     return report_page(report_of(solved, checked, made.record, {o.display, o.output}));
                   })});
  write_folder(o.output, files);
  remove_other_exports(o.output, files);

  tell(o, solved, judged, left_out);
  if (o.json) print_record(with_files(std::move(made.record), o.output, files, left_out));
  return status::done;
}

}  // namespace corvantile::kit
