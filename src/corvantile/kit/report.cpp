// corvantile-kit report and verify: a job as one page, and what a second measurement says about it.

#include <string>

#include "corvantile/formats/detect.hpp"
#include "corvantile/kit/checked.hpp"
#include "corvantile/kit/files.hpp"
#include "corvantile/kit/imported.hpp"
#include "corvantile/kit/job_folder.hpp"
#include "corvantile/kit/report_job.hpp"
#include "corvantile/kit/verbs.hpp"
#include "corvantile/kit/words.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile::kit {
namespace {

struct opened {
  solved_job job;
  checked measured;
  report_data data;
};

// The job of a folder with its page, the second measurement in it where there is one.
opened open(const std::string& folder, const std::string& title, const source_options& after) {
  solved_job job = open_job(folder).job;
  source_options own;
  own.source = folder + "/measurements.txt";
  own.from = "corvantile";
  checked measured = check_source(own);
  const auto record = nlohmann::ordered_json::parse(read_input(folder + "/job.json"));
  report_data data = report_of(job, measured, record, {.title = title, .folder = folder});
  if (!after.source.empty()) add_measured(data, job, measured, read_source(after));
  return {std::move(job), std::move(measured), std::move(data)};
}

nlohmann::ordered_json summary(const difference_summary& d) {
  return {{"mean", d.mean}, {"max", d.max}, {"where", d.where}};
}

std::string text_of(const measured_record& m) {
  const auto line = [](const char* what, const difference_summary& d) {
    return std::string(what) + "mean " + decimal(d.mean, 2) + ", largest " + decimal(d.max, 2) +
           (d.where.empty() ? "" : " (" + d.where + ")") + '\n';
  };
  std::string text = wrapped(m.verdict, 0);
  for (const std::string& paragraph : m.diagnosis) text += wrapped(paragraph, 0);
  text += "CIEDE2000 of " + std::to_string(m.patches.size()) + " patches\n";
  text += line("  grays, from the target      ", m.grays);
  text += line("  all, from the target        ", m.all);
  text += line("  all, from the prediction    ", m.all_from_predicted);
  return text;
}

}  // namespace

int run_report(const report_options& o) {
  const std::string target = o.output.empty() ? o.folder + "/report.html" : o.output;
  refuse_to_replace(target, o.force);
  const opened job = open(o.folder, o.display, o.after);
  write_output(target, report_page(job.data), o.force);
  if (target != "-") say(o, target);
  if (o.json) print_record({{"report", target}});
  return status::done;
}

int run_verify(const verify_options& o) {
  const bool into_file = !o.output.empty() && o.output != "-";
  if (into_file) refuse_to_replace(o.output, o.force);
  const opened job = open(o.folder, "", o.after);
  const measured_record& m = *job.data.measured;
  if (into_file || !o.json) write_output(o.output, text_of(m), o.force);
  if (o.json) {
    nlohmann::ordered_json record = {
        {"verdict", m.verdict}, {"diagnosis", m.diagnosis}, {"patches", m.patches.size()}};
    record["grays"] = summary(m.grays);
    record["all"] = summary(m.all);
    record["from_prediction"] = summary(m.all_from_predicted);
    print_record(record);
  }
  return o.strict && !(m.grays.mean <= o.limit) ? status::findings : status::done;
}

}  // namespace corvantile::kit
