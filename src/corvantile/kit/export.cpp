// corvantile-kit export: from a job's folder to what a device loads.

#include <fmt/format.h>
#include <string>
#include <utility>
#include <vector>

#include "corvantile/kit/exports.hpp"
#include "corvantile/kit/files.hpp"
#include "corvantile/kit/job_folder.hpp"
#include "corvantile/kit/verbs.hpp"

namespace corvantile::kit {
namespace {

// Writes one file, or a folder of them.
std::vector<std::string> put(const exported& made, const export_format& format, const export_verb_options& o) {
  const std::string target = o.output.empty() ? o.folder + '/' + format.usual_name : o.output;
  if (format.one_file) {
    write_output(target, made.files.front().bytes, o.force);
    return {target};
  }
  refuse_to_replace(target, o.force);
  std::vector<text_file> files;
  std::vector<std::string> names;
  for (const file_content& f : made.files) {
    files.push_back({f.name, f.bytes});
    names.push_back(target + '/' + f.name);
  }
  write_folder(target, std::move(files));
  return names;
}

}  // namespace

int run_export(const export_verb_options& o) {
  const export_format& format = format_named(o.how.format);
  const exported made = export_job(open_job(o.folder).solved, o.how);
  const std::vector<std::string> names = put(made, format, o);
  for (const std::string& name : names) say(o, name);
  if (made.calibration != calibration_use::none) say(o, "note: " + made.calibration_words);
  if (made.clamped > 0) say(o, fmt::format("note: {} entries were clamped to their range", made.clamped));
  if (o.json) {
    const nlohmann::ordered_json record = {{"format", format.name},
                                           {"files", names},
                                           {"calibration", made.calibration_words},
                                           {"clamped", made.clamped}};
    print_record(record);
  }
  return status::done;
}

}  // namespace corvantile::kit
