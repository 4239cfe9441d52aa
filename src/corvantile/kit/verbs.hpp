#pragma once
// The verbs: what each is told, and what it ends with. `command_line.cpp` fills these records from arguments.

#include <cstddef>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

#include "corvantile/kit/exports.hpp"
#include "corvantile/kit/imported.hpp"
#include "corvantile/kit/targets.hpp"

namespace corvantile::kit {

/// What the process ends with; below 3 as any well-behaved command, from 4 on as `Corvantile`.
namespace status {
inline constexpr int done = 0;
inline constexpr int findings = 1;  ///< under --strict
inline constexpr int usage = 2;
inline constexpr int bad_settings = 4;
inline constexpr int bad_input = 5;  ///< or one that is not there
inline constexpr int cannot_write = 6;
inline constexpr int no_memory = 7;
inline constexpr int not_finite = 8;
inline constexpr int cannot_express = 9;  ///< not in that format
}  // namespace status

/// The options of every verb. `json` promises one JSON object on standard output and nothing else there.
struct common_options {
  std::string output;
  bool quiet = false;
  bool json = false;
  bool force = false;
};

/// A line for people, on standard error; nothing where they asked for quiet.
void say(const common_options& o, const std::string& line);

/// The object that `--json` promises, on standard output. Bytes of names that are no UTF-8 become U+FFFD.
void print_record(const nlohmann::ordered_json& record);

struct make_options : common_options {
  source_options source;
  wishes wanted;
  std::string display;  ///< for titles
  bool anyway = false;  ///< solve although the measurements are not worth it
};

struct import_options : common_options {
  source_options source;
  std::string calibration;  ///< a .cal file to write; empty: none
};

struct check_options : common_options {
  source_options source;
  std::string settings;  ///< of a job to judge, too; empty: none
  bool strict = false;
};

struct chart_options : common_options {
  std::size_t levels = 17;
  std::size_t verify = 0;
  std::string ramps = "measured";
  std::string format = "ti1";
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
  source_options after;  ///< a measurement behind the loaded tables; no source: none
};

struct verify_options : common_options {
  std::string folder;
  source_options after;
  bool strict = false;
  double limit = 1.5;  ///< CIEDE2000, mean of the grays, under `strict`
};

struct refine_options : common_options {
  std::string folder;
  source_options after;
  bool anyway = false;  ///< also where the readings were not taken behind the tables
};

/// Each does its work and gives the status; what keeps it from being done is thrown as `failure`.
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
