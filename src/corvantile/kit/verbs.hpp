#pragma once
// The verbs: the options of each, and the status it ends with. command_line.cpp fills the options from arguments.

#include <cstddef>
#include <optional>
#include <string>

#include "corvantile/formats/chart.hpp"
#include "corvantile/kit/exports.hpp"
#include "corvantile/kit/request.hpp"
#include "corvantile/kit/source.hpp"
#include "corvantile/kit/terminal.hpp"

namespace corvantile::kit {

/// Exit statuses: up to 2 as usual for commands, from 4 on as in `Corvantile`.
namespace status {
inline constexpr int done = 0;
inline constexpr int findings = 1;  ///< under --strict
inline constexpr int usage = 2;
inline constexpr int bad_settings = 4;
inline constexpr int bad_input = 5;  ///< or a missing file
inline constexpr int cannot_write = 6;
inline constexpr int no_memory = 7;
inline constexpr int not_finite = 8;
inline constexpr int cannot_express = 9;  ///< the format cannot hold it
}  // namespace status

struct make_options : common_options {
  source_options source;
  request wanted;
  std::string display;  ///< for titles
  bool anyway = false;  ///< solve even if the check finds errors
};

struct import_options : common_options {
  source_options source;
  std::string calibration;  ///< a .cal file to write; empty: none
};

struct check_options : common_options {
  source_options source;
  std::string settings;  ///< settings file of a job to judge as well; empty: none
  bool strict = false;
};

enum class chart_format { ti1, csv, hcfr };

struct chart_options : common_options {
  std::size_t levels = 17;
  std::size_t verify = 0;
  chart_ramps ramps = chart_ramps::measured;
  chart_format format = chart_format::ti1;
};

struct solve_options : common_options {
  std::string settings;
};

struct export_verb_options : common_options {
  std::string folder;
  export_options how;
};

struct predict_options : common_options {
  std::string measurements, settings, tables;
  std::optional<int> numsegs;
  bool invert = false;
};

struct report_options : common_options {
  std::string folder;
  std::string display;   ///< for the title
  source_options after;  ///< a measurement with the tables loaded; empty: none
};

struct verify_options : common_options {
  std::string folder;
  source_options after;
  bool strict = false;
  double limit = 1.5;  ///< for `strict`: mean CIEDE2000 of the grays
};

struct refine_options : common_options {
  std::string folder;
  source_options after;
  bool anyway = false;  ///< even if the tables seem not to have been loaded
};

/// Reads the command line, runs its verb (or prints help or version), and returns the status of the process. Lets
/// failures of the verb through.
int run_command_line(int argc, char** argv);

/// Each does its work and returns the status, or throws `failure`.
int run_make(make_options o);
int run_import(const import_options& o);
int run_check(const check_options& o);
int run_chart(const chart_options& o);
int run_solve(const solve_options& o);
int run_export(const export_verb_options& o);
int run_report(const report_options& o);
int run_verify(const verify_options& o);
int run_refine(const refine_options& o);
int run_predict(const predict_options& o);

}  // namespace corvantile::kit
