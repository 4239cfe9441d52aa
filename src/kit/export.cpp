// corvantile-kit export: from a job's folder to what a device loads.

#include <memory>
#include <string>
#include <vector>

#include "kit/exports.hpp"
#include "kit/files.hpp"
#include "kit/job_folder.hpp"
#include "kit/verb.hpp"
#include "utils/file_output.hpp"

namespace corvantile::kit {
namespace {

struct options : common_options {
  std::string folder;
  export_options how;
};

std::vector<std::string> format_names() {
  std::vector<std::string> names;
  for (const export_format& f : export_formats()) names.push_back(f.name);
  return names;
}

std::string format_list() {
  std::string list = "Formats:\n";
  for (const export_format& f : export_formats()) {
    std::string line = std::string("  ") + f.name;
    line.resize(15, ' ');
    list += line + f.what + '\n';
  }
  return list;
}

// Writes one file, or a folder of them.
std::vector<std::string> put(const exported& made, const export_format& format, const options& o) {
  const std::string target = o.output.empty() ? o.folder + '/' + format.usual_name : o.output;
  if (format.one_file) {
    write_output(target, made.files.front().bytes, o.force);
    return {target};
  }
  refuse_to_replace(target, o.force);
  make_folder(target);
  std::vector<text_file> files;
  std::vector<std::string> names;
  for (const file_content& f : made.files) {
    files.push_back({target + '/' + f.name, f.bytes});
    names.push_back(files.back().path);
  }
  write_files(files);
  return names;
}

int run(const options& o) {
  const export_format& format = format_named(o.how.format);
  const solved_job job = open_job_folder(o.folder);
  const exported made = export_job(job, parse_provenance(read_input(o.folder + "/measurements.txt")), o.how);
  const std::vector<std::string> names = put(made, format, o);
  for (const std::string& name : names) say(o, name);
  if (made.calibration != calibration_use::none) say(o, "note: " + calibration_note(made.calibration));
  if (made.clamped > 0) say(o, "note: " + std::to_string(made.clamped) + " entries were clamped to their range");
  if (o.json) {
    const nlohmann::ordered_json record = {{"format", format.name},
                                           {"files", names},
                                           {"calibration", calibration_note(made.calibration)},
                                           {"clamped", made.clamped}};
    write_output("-", record.dump(2) + '\n', true);
  }
  return status::done;
}

}  // namespace

verb export_verb(CLI::App& kit) {
  auto o = std::make_shared<options>();
  CLI::App& command = *kit.add_subcommand("export", "Write a job's tables in the format of a device or program");
  command.add_option("FOLDER", o->folder, "The folder of a job, as solve and make leave it")->required();
  command.add_option("--format", o->how.format, "One of those below")
      ->required()
      ->type_name("F")
      ->check(CLI::IsMember(format_names()).description(""));
  command.add_option("--size", o->how.size, "cube3d, 3dl: points of the grid's side (default 33)");
  command.add_option("--entries", o->how.entries, "icc (default 256), mhc2, kms (1024): entries of a table");
  command.add_option("--bits", o->how.bits, "hex, mif, coe, c: bits of a word")->capture_default_str();
  command.add_option("--layout", o->how.layout, "hex, mif, coe, c: packed, planar or interleaved")
      ->check(CLI::IsMember({"packed", "planar", "interleaved"}).description(""))
      ->capture_default_str();
  command.add_option("--matrix", o->how.matrix, "hex, mif, coe, c: q2.14 or q15.16")
      ->check(CLI::IsMember({"q2.14", "q15.16"}).description(""))
      ->capture_default_str();
  command.add_flag("--wide", o->how.wide, "kms: 32-bit entries");
  command.add_option("--calibration", o->how.calibration,
                     "icc, cal, cube: 'none', or a .cal file, instead of the calibration that was in effect");
  command.add_option("--display", o->how.title, "A name for titles");
  add_common(command, *o, "The file, or the folder of a format with several (default: in FOLDER)");
  command.footer(format_list() + "\nExample:\n  corvantile-kit export my-display --format clf -o my-display.clf");
  return {&command, [o] { return run(*o); }};
}

}  // namespace corvantile::kit
