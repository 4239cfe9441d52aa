#pragma once
// Help that fits a terminal of 80 columns.

#include <CLI/CLI.hpp>
#include <sstream>
#include <string>

#include "corvantile/kit/words.hpp"

namespace corvantile::kit {

/// Breaks what is said of an option or a verb into lines beside its name.
class help_layout : public CLI::Formatter {
 public:
  std::string make_option_desc(const CLI::Option* option) const override {
    std::string text = wrapped(CLI::Formatter::make_option_desc(option), 0, 80 - get_column_width());
    text.pop_back();  // the last line's end
    return text;
  }
  std::string make_subcommand(const CLI::App* verb) const override {
    std::string text = wrapped(verb->get_description(), 0, 80 - get_column_width());
    text.pop_back();
    std::ostringstream line;
    CLI::detail::format_help(line, verb->get_name(), text, get_column_width());
    return line.str();
  }
};

}  // namespace corvantile::kit
