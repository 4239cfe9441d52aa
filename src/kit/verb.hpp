#pragma once
// What the verbs of corvantile-kit share: the options that they all take, and how they end.

#include <CLI/CLI.hpp>
#include <functional>
#include <string>

namespace corvantile::kit {

/// What the process ends with; below 1 to 2 as any well-behaved command, from 4 on as `Corvantile`.
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

/// A verb as the command line knows it. `run` is called when it was asked for, and gives the status.
struct verb {
  CLI::App* command;
  std::function<int()> run;
};

/// Adds -o (described by `output`; none where that is empty), -q, --json and --force.
void add_common(CLI::App& command, common_options& o, const std::string& output);

/// A line for people, on standard error; nothing where they asked for quiet.
void say(const common_options& o, const std::string& line);

verb import_verb(CLI::App& kit);
verb chart_verb(CLI::App& kit);
verb check_verb(CLI::App& kit);
verb predict_verb(CLI::App& kit);
verb solve_verb(CLI::App& kit);
verb export_verb(CLI::App& kit);
verb make_verb(CLI::App& kit);

}  // namespace corvantile::kit
