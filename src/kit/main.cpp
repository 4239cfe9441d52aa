// corvantile-kit: what people use around Corvantile, a verb for each step from an instrument's file to a device.

#include <CLI/CLI.hpp>
#include <csignal>
#include <iostream>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "kit/verb.hpp"
#include "utils/failure.hpp"
#include "utils/version.hpp"

namespace corvantile::kit {
namespace {

int status_of(fault kind) {
  switch (kind) {
    case fault::no_mode:
    case fault::unknown_mode:
    case fault::no_measurement_file:
    case fault::setting:
      return status::bad_settings;
    case fault::content:
    case fault::no_measurements:
    case fault::version:
    case fault::no_gamma:
      return status::bad_input;
    case fault::unwritable:
      return status::cannot_write;
    case fault::not_finite:
      return status::not_finite;
    case fault::inexpressible:
      return status::cannot_express;
  }
  return status::bad_input;
}

int fail(int with, const std::string& message) {
  std::cerr << "corvantile-kit: " << message << '\n';
  return with;
}

int main(int argc, char** argv) {
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  CLI::App kit("From what an instrument measured to what a display loads", "corvantile-kit");
  kit.set_version_flag("--version", "corvantile-kit " CORVANTILE_VERSION);
  kit.set_help_flag("-h,--help", "Print this help and leave");
  kit.require_subcommand(1);
  kit.footer("Each verb has a help of its own: corvantile-kit VERB --help");
  const std::vector<verb> verbs{make_verb(kit),  import_verb(kit), check_verb(kit),  chart_verb(kit),
                                solve_verb(kit), export_verb(kit), predict_verb(kit)};
  try {
    kit.parse(argc, argv);
    for (const verb& v : verbs)
      if (v.command->parsed()) return v.run();
    return status::usage;
  } catch (const CLI::Success& asked) {  // --help, --version
    return kit.exit(asked);
  } catch (const CLI::ParseError& wrong) {
    kit.exit(wrong);
    return status::usage;
  } catch (const failure& f) {
    return fail(status_of(f.kind), f.message);
  } catch (const std::bad_alloc&) {
    return fail(status::no_memory, "out of memory");
  } catch (const std::length_error&) {  // a size that no memory could hold
    return fail(status::no_memory, "out of memory");
  }
}

}  // namespace
}  // namespace corvantile::kit

int main(int argc, char** argv) { return corvantile::kit::main(argc, argv); }
