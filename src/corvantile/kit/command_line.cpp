// Every option of every verb, on one page.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <fmt/format.h>
#include <functional>
#include <initializer_list>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "corvantile/formats/delimited.hpp"
#include "corvantile/kit/verbs.hpp"
#include "corvantile/utils/version.hpp"

namespace corvantile::kit {
namespace {

// Wraps the texts beside the names of options and verbs, so that help fits a terminal of 80 columns.
class help_layout : public CLI::Formatter {
 public:
  std::string make_option_desc(const CLI::Option* option) const override {
    return in_right_column(CLI::Formatter::make_option_desc(option));
  }
  std::string make_subcommand(const CLI::App* verb) const override {
    std::ostringstream line;
    CLI::detail::format_help(line, verb->get_name(), in_right_column(verb->get_description()), get_column_width());
    return line.str();
  }

 private:
  std::string in_right_column(const std::string& text) const {
    std::string lines = wrapped(text, 0, 80 - get_column_width());
    lines.pop_back();  // the last line end
    return lines;
  }
};

// One of these words. The option's own text lists them.
CLI::Validator one_of(std::vector<std::string> words) { return CLI::IsMember(std::move(words)).description(""); }

// The same for an option that is an enumeration.
template <class Enum>
using words = std::vector<std::pair<std::string, Enum>>;

template <class Enum>
CLI::Option* add_choice(CLI::App& verb, const char* name, Enum& value, words<Enum> all, const char* what) {
  const auto usual = std::ranges::find(all, value, &std::pair<std::string, Enum>::second);
  const std::string usual_word = usual == all.end() ? "" : usual->first;
  std::vector<std::string> names;
  for (const auto& [word, meaning] : all) names.push_back(word);
  return verb
      .add_option_function<std::string>(
          name,
          [&value, all = std::move(all)](const std::string& word) {
            value = std::ranges::find(all, word, &std::pair<std::string, Enum>::first)->second;
          },
          what)
      ->check(one_of(std::move(names)))
      ->default_str(usual_word)
      ->type_name("TEXT");
}

words<device> device_words() {
  words<device> all;
  for (const device_facts& d : devices()) all.emplace_back(d.name, d.id);
  return all;
}

void add_common(CLI::App& verb, common_options& o, const std::string& output) {
  if (!output.empty()) verb.add_option("-o,--output", o.output, output);
  verb.add_flag("-q,--quiet", o.quiet, "Say nothing but errors");
  verb.add_flag("--json", o.json, "Print one JSON object on standard output");
  verb.add_flag("--force", o.force, "Replace what is there");
}

// Where output goes without -o.
enum class usual_output { stream, file };

// Not both the record and other output can go to standard output.
void require_room_for_json(const common_options& o, usual_output usual) {
  const bool streams = o.output == "-" || (o.output.empty() && usual == usual_output::stream);
  if (o.json && streams)
    throw CLI::ValidationError(
        "--json", "standard output cannot take both the record and the output; name a file for the output with -o");
}

void keep_json_apart(CLI::App& verb, const common_options& o, usual_output usual) {
  verb.parse_complete_callback([&o, usual] { require_room_for_json(o, usual); });
}

void add_source(CLI::App& verb, source_options& o) {
  verb.add_option("SOURCE", o.source, "What the instrument's program wrote; - for standard input")->required();
  verb.add_option("SECOND", o.second, "HCFR: the other of the two sheets");
  verb.add_option_function<std::string>(
          "--from", [&o](const std::string& word) { o.from = kind_named(word); },
          "What SOURCE is, if its content does not tell: ti3, cgats, csv, hcfr, corvantile")
      ->check(one_of({"ti3", "cgats", "csv", "hcfr", "corvantile"}));
  verb.add_option("--layout", o.layout, "Order of the ramps in 12 columns without a header, such as rgbw")
      ->check(CLI::Validator(
          [](const std::string& order) -> std::string {
            return is_layout(order) ? "" : order + ": not each of w, r, g and b once";
          },
          ""));
  add_choice(
      verb, "--ramps", o.ramps,
      {{"measured", ramp_source::measured}, {"derived", ramp_source::derived}, {"auto", ramp_source::automatic}},
      "Red, green and blue ramps: measured, derived (from gray) or auto");
}

void add_make(CLI::App& verb, make_options& o) {
  add_source(verb, o.source);
  verb.add_option("--target", o.wanted.target, "native, srgb, rec709, display-p3, adobe-rgb or bt2020")
      ->check(one_of(target_names()))
      ->capture_default_str();
  verb.add_option("--gamma", o.wanted.gamma,
                  "An exponent, srgb, bt1886, lstar, or a gamma file (default: 2.2, for windows srgb)");
  verb.add_option("--white", o.wanted.white, "native, d65, d50, a temperature, or x,y (default: the target's)");
  add_choice(verb, "--for", o.wanted.for_device, device_words(), "linux, x11, windows, video, fpga or all");
  add_choice(verb, "--gamut-mapping", o.wanted.gamut_mapping,
             {{"clip", gamut_mapping::clip}, {"compress", gamut_mapping::compress}},
             "Colours out of reach: clip keeps the others right, compress keeps gradations");
  verb.add_option("--display", o.display, "The display's name, for titles");
  verb.add_flag("--anyway", o.anyway, "Solve even if the check finds errors");
  add_common(verb, o, "The folder (default: SOURCE without its ending, and -corrected)");
  verb.footer("Example:\n  corvantile-kit make display.ti3 --target srgb --for linux -o my-display");
}

void add_import(CLI::App& verb, import_options& o) {
  add_source(verb, o.source);
  verb.add_option("--calibration", o.calibration, "Write the calibration that was in effect to this .cal file");
  add_common(verb, o, "The measurement file (default: standard output)");
  keep_json_apart(verb, o, usual_output::stream);
  verb.footer(
      "Reads ArgyllCMS .ti3 and other CGATS, CSV and other tables, HCFR's sheets (gray\n"
      "scale and primaries), and Corvantile's own measurement file.\n\n"
      "Example:\n  corvantile-kit import display.ti3 -o measurements.txt");
}

void add_check(CLI::App& verb, check_options& o) {
  add_source(verb, o.source);
  verb.add_option("--settings", o.settings, "Say what a job with these settings would do, too");
  verb.add_flag("--strict", o.strict, "End with status 1 if a finding is worse than a note");
  add_common(verb, o, "Where to write the findings (default: standard output)");
  verb.footer("Example:\n  corvantile-kit check measurements.txt --strict");
}

void add_chart(CLI::App& verb, chart_options& o) {
  verb.add_option("--levels", o.levels, "Even levels of each ramp, 5 to 256")
      ->check(CLI::Range(5, 256).description(""))
      ->capture_default_str();
  add_choice(verb, "--ramps", o.ramps, {{"measured", chart_ramps::measured}, {"derived", chart_ramps::derived}},
             "measured: four ramps; derived: gray and the three primaries");
  verb.add_option("--verify", o.verify, "Further patches over the cube and near gray, for check and verify")
      ->check(CLI::Range(0, 10000).description(""));
  add_choice(verb, "--format", o.format,
             {{"ti1", chart_format::ti1}, {"csv", chart_format::csv}, {"hcfr", chart_format::hcfr}},
             "ti1 (ArgyllCMS), csv, or hcfr (HCFR's user patches)");
  add_common(verb, o, "The chart (default: standard output)");
  keep_json_apart(verb, o, usual_output::stream);
  verb.footer(
      "White and black come again and again, to show drift.\n\n"
      "Example:\n  corvantile-kit chart --levels 17 --verify 50 -o ramps.ti1\n"
      "  dispread -v ramps        (ArgyllCMS measures and writes ramps.ti3)");
}

void add_solve(CLI::App& verb, solve_options& o) {
  verb.add_option("SETTINGS", o.settings, "Settings as Corvantile reads them; - for standard input")->required();
  add_common(verb, o, "The folder (default: outdir of the settings)");
  verb.footer("Example:\n  corvantile-kit solve settings.txt -o my-display");
}

std::string format_list() {
  std::string list = "Formats:\n";
  for (const export_format& f : export_formats()) list += fmt::format("  {:<13}{}\n", f.name, f.what);
  return list;
}

// Refuses options that the format would ignore.
void require_options_of_format(const export_verb_options& o) {
  const auto only_for = [&](const char* option, bool given, std::initializer_list<const char*> formats) {
    if (!given || std::ranges::any_of(formats, [&](const char* f) { return o.how.format == f; })) return;
    throw CLI::ValidationError(option, "the format " + o.how.format + " does not have it");
  };
  only_for("--size", o.how.size.has_value(), {"cube3d", "3dl"});
  only_for("--entries", o.how.entries.has_value(), {"icc", "mhc2", "kms"});
  only_for("--wide", o.how.wide, {"kms"});
  if (o.output == "-" && !format_named(o.how.format).one_file)
    throw CLI::ValidationError("--output", "the format " + o.how.format + " is several files; name a folder");
}

void add_export(CLI::App& verb, export_verb_options& o) {
  verb.add_option("FOLDER", o.folder, "The folder of a job, as solve and make leave it")->required();
  verb.add_option("--format", o.how.format, "One of those below")
      ->required()
      ->type_name("F")
      ->check(one_of(format_names()));
  verb.add_option("--size", o.how.size, "cube3d, 3dl: points of the grid's side (default 33)");
  verb.add_option("--entries", o.how.entries, "icc (default 256), mhc2, kms (1024): entries of a table");
  verb.add_option("--bits", o.how.memory.bits, "hex, mif, coe, c: bits of a word")->capture_default_str();
  add_choice(
      verb, "--layout", o.how.memory.layout,
      {{"packed", word_layout::packed}, {"planar", word_layout::planar}, {"interleaved", word_layout::interleaved}},
      "hex, mif, coe, c: packed, planar or interleaved");
  add_choice(verb, "--matrix", o.how.memory.matrix,
             {{"q2.14", matrix_format::q2_14}, {"q15.16", matrix_format::q15_16}},
             "hex, mif, coe, c: q2.14 or q15.16");
  verb.add_flag("--wide", o.how.wide, "kms: 32-bit entries");
  verb.add_option("--calibration", o.how.calibration,
                  "icc, cal, cube: 'none', or a .cal file, instead of the calibration that was in effect");
  verb.add_option("--display", o.how.title, "A name for titles");
  add_common(verb, o, "The file, or the folder of a format with several (default: in FOLDER)");
  verb.parse_complete_callback([&o] {
    require_room_for_json(o, usual_output::file);
    require_options_of_format(o);
  });
  verb.footer(format_list() + "\nExample:\n  corvantile-kit export my-display --format clf -o my-display.clf");
}

void add_report(CLI::App& verb, report_options& o) {
  verb.add_option("FOLDER", o.folder, "The folder of a job, as solve and make leave it")->required();
  verb.add_option("--measured", o.after.source, "A measurement behind the loaded correction, to show beside it");
  verb.add_option("--display", o.display, "The display's name, for the title");
  add_common(verb, o, "The page (default: report.html in FOLDER)");
  keep_json_apart(verb, o, usual_output::file);
  verb.footer("Example:\n  corvantile-kit report my-display -o report.html");
}

void add_verify(CLI::App& verb, verify_options& o) {
  verb.add_option("FOLDER", o.folder, "The folder of a job, as solve and make leave it")->required();
  verb.add_option("AFTER", o.after.source,
                  "What was measured with the correction loaded, in any file that import reads")
      ->required();
  verb.add_flag("--strict", o.strict, "End with status 1 if the grays' mean exceeds the limit");
  verb.add_option("--limit", o.limit, "The largest mean CIEDE2000 of the grays for --strict")->capture_default_str();
  add_common(verb, o, "Where to write the verdict (default: standard output)");
  verb.footer(
      "Patches to measure come from 'chart --verify'.\n\n"
      "Example:\n  corvantile-kit verify my-display verify.ti3 --strict");
}

void add_refine(CLI::App& verb, refine_options& o) {
  verb.add_option("FOLDER", o.folder, "The folder of a job, as solve and make leave it")->required();
  verb.add_option("AFTER", o.after.source,
                  "A gray ramp measured with the correction loaded, in any file that import reads")
      ->required();
  verb.add_flag("--anyway", o.anyway, "Even if the tables seem not to have been loaded, or twice");
  add_common(verb, o, "A new folder for the refined job (default: FOLDER itself)");
  verb.footer(
      "Solves again, with grays corrected by what was measured: for displays whose\n"
      "channels do not add up. FOLDER/round-1 keeps the first tables and AFTER.\n\n"
      "Example:\n  corvantile-kit refine my-display verify.ti3");
}

void add_predict(CLI::App& verb, predict_options& o) {
  const CLI::Validator a_file(
      [](const std::string& name) -> std::string {
        return name == "-" ? "standard input is for the lines to answer; name a file" : "";
      },
      "");
  verb.add_option("MEASUREMENTS", o.measurements, "The measurement file")->required()->check(a_file);
  auto* settings = verb.add_option("--settings", o.settings, "Fit as a job with these settings does")->check(a_file);
  verb.add_option("--tables", o.tables, "Behind the tables of this folder")->excludes(settings);
  verb.add_option("--numsegs", o.numsegs, "Pieces of the fitted curves (default 5)");
  verb.add_flag("--invert", o.invert, "Reads X Y Z, prints r g b and the distance that is left");
  add_common(verb, o, "The answers (default: standard output)");
  verb.footer(
      "Reads lines 'r g b' (0 to 1) on standard input and prints 'X Y Z' for each.\n\n"
      "Example:\n  echo 0.5 0.5 0.5 | corvantile-kit predict measurements.txt --tables my-display");
}

// The options of all verbs.
struct all_options {
  make_options make;
  import_options import;
  check_options check;
  chart_options chart;
  solve_options solve;
  export_verb_options export_;
  report_options report;
  verify_options verify;
  refine_options refine;
  predict_options predict;
};

}  // namespace

int run_command_line(int argc, char** argv) {
  CLI::App kit("From what an instrument measured to what a display loads", "corvantile-kit");
  kit.set_version_flag("--version", "corvantile-kit " CORVANTILE_VERSION);
  kit.set_help_flag("-h,--help", "Print this help and leave");
  kit.require_subcommand(1);
  kit.formatter(std::make_shared<help_layout>());
  kit.footer("Each verb has a help of its own: corvantile-kit VERB --help");

  all_options o;
  std::function<int()> run;
  const auto verb = [&](const char* name, const char* what, auto add, auto& options, auto verb_of) {
    CLI::App& command = *kit.add_subcommand(name, what);
    add(command, options);
    command.set_version_flag("--version", "corvantile-kit " CORVANTILE_VERSION);
    command.callback([&run, &options, verb_of] { run = [&options, verb_of] { return verb_of(options); }; });
  };
  verb("make", "Do everything: import, check, solve, export, report", add_make, o.make, run_make);
  verb("import", "Turn what an instrument's program wrote into a measurement file", add_import, o.import, run_import);
  verb("check", "Say whether measurements can be trusted", add_check, o.check, run_check);
  verb("chart", "Write the patches to measure", add_chart, o.chart, run_chart);
  verb("solve", "Run a job from a settings file and keep it in a folder", add_solve, o.solve, run_solve);
  verb("export", "Write a job's tables in the format of a device or program", add_export, o.export_, run_export);
  verb("report", "Show a job as one page", add_report, o.report, run_report);
  verb("verify", "Judge a measurement behind the loaded correction", add_verify, o.verify, run_verify);
  verb("refine", "Solve again, corrected by a measurement behind the correction", add_refine, o.refine, run_refine);
  verb("predict", "Say what the display shows for drive values", add_predict, o.predict, run_predict);
  try {
    kit.parse(argc, argv);
  } catch (const CLI::Success& asked) {  // --help, --version
    return kit.exit(asked);
  } catch (const CLI::ParseError& wrong) {
    kit.exit(wrong);
    return status::usage;
  }
  return run();
}

}  // namespace corvantile::kit
