#include "kit/verb.hpp"

#include <iostream>

namespace corvantile::kit {

void add_common(CLI::App& command, common_options& o, const std::string& output) {
  if (!output.empty()) command.add_option("-o,--output", o.output, output);
  command.add_flag("-q,--quiet", o.quiet, "Say nothing but errors");
  command.add_flag("--json", o.json, "Print one JSON object on standard output");
  command.add_flag("--force", o.force, "Replace what is there");
}

void say(const common_options& o, const std::string& line) {
  if (!o.quiet) std::cerr << line << '\n';
}

}  // namespace corvantile::kit
