// corvantile-kit report and verify: a job as one page, and the verdict of a second measurement.

#include <fmt/format.h>
#include <string>

#include "corvantile/appraisal/verification.hpp"
#include "corvantile/kit/files.hpp"
#include "corvantile/kit/job_folder.hpp"
#include "corvantile/kit/report_job.hpp"
#include "corvantile/kit/verbs.hpp"
#include "corvantile/report/wording.hpp"

namespace corvantile::kit {
namespace {

verification verified(const job& j, const source_options& after) {
  return verify(subject_of(j.result, j.set()), read_source(after), j.file.known);
}

nlohmann::ordered_json record_of(const difference_summary& d) {
  return {{"mean", d.mean}, {"max", d.max}, {"where", d.where ? patch_name(*d.where) : ""}};
}

nlohmann::ordered_json record_of(const verification& v) {
  return {{"verdict", verdict_of(v)},    {"diagnosis", diagnosis_of(v)},
          {"patches", v.patches.size()}, {"grays", record_of(v.grays)},
          {"all", record_of(v.all)},     {"from_prediction", record_of(v.from_prediction)}};
}

std::string text_of(const verification& v) {
  const auto line = [](const char* what, const difference_summary& d) {
    return fmt::format("  {:<28}mean {:.2f}, largest {:.2f}{}\n", what, d.mean, d.max,
                       d.where ? " (" + patch_name(*d.where) + ")" : "");
  };
  std::string text = wrapped(verdict_of(v), 0);
  for (const std::string& paragraph : diagnosis_of(v)) text += wrapped(paragraph, 0);
  text += fmt::format("CIEDE2000 of {} patches\n", v.patches.size());
  text += line("grays, from the target", v.grays);
  text += line("all, from the target", v.all);
  text += line("all, from the prediction", v.from_prediction);
  return text;
}

}  // namespace

int run_report(const report_options& o) {
  const std::string target = o.output.empty() ? o.folder + '/' + folder::report : o.output;
  refuse_to_replace(target, o.force);
  const auto [solved, record] = open_job(o.folder);
  const quality checked = check_measurements(solved.file.samples, solved.file.known);
  report_data page = report_of(solved, checked, record, {o.display, o.folder});
  if (!o.after.source.empty()) page.measured = verified(solved, o.after);
  write_output(target, report_page(page), o.force);
  if (target != "-") say(o, target);
  if (o.json) print_record({{"report", target}});
  return status::done;
}

int run_verify(const verify_options& o) {
  const bool into_file = !o.output.empty() && o.output != "-";
  if (into_file) refuse_to_replace(o.output, o.force);
  const verification v = verified(open_job(o.folder).solved, o.after);
  if (into_file || !o.json) write_output(o.output, text_of(v), o.force);
  if (o.json) print_record(record_of(v));
  return o.strict && !(v.grays.mean <= o.limit) ? status::findings : status::done;
}

}  // namespace corvantile::kit
