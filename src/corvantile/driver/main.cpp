// Arguments and standard input in, exit status out. Nothing else ends the process.

#include <algorithm>
#include <iostream>
#include <new>
#include <ostream>
#include <span>
#include <stdexcept>
#include <string_view>
#include <unistd.h>
#include <vector>

#include "corvantile/driver/exit_status.hpp"
#include "corvantile/driver/run.hpp"
#include "corvantile/driver/standard_streams.hpp"
#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/program_start.hpp"

namespace corvantile {
namespace {

constexpr std::string_view no_memory_message = "Allocation would exceed memory limit";
constexpr std::string_view help =
    "Corvantile turns colourimetric measurements of a display into its correction tables.\n"
    "\n"
    "Usage: Corvantile [-v | -verbose] < settings.txt\n"
    "\n"
    "  -v, -verbose  report settings, colour differences, times and the gray ramp on\n"
    "                standard output\n"
    "  --help        print this text\n"
    "  --version     print the version\n"
    "\n"
    "The settings are one group on standard input, for example\n"
    "  &opts cvmode='CV1' wgfile='display.txt' outdir='tables' temp=6500 /\n"
    "cvmode is 'CV1' (grays only), 'CV2' (primaries, white and tone curve) or 'CV2_1'\n"
    "(both). The tables are written into outdir, which must exist.\n";

void prompt_on_terminal() {
  if (::isatty(STDIN_FILENO) == 0) return;
  std::cerr << "Waiting for settings on standard input, then Ctrl-D on a line of its own. For example:\n"
               "  &opts cvmode='CV1' temp=6500\n"
               "  wgfile='measurements.txt' /\n";
}

int main(std::span<const std::string_view> arguments) {
  start_program();
  descriptor_buffer buffer(STDOUT_FILENO);
  std::ostream out(&buffer);

  const auto stop = [&](int status, std::string_view message, std::ostream& to) {
    out.flush();
    to << message << std::endl;
    if (out || status != exit_status::normal) return status;
    std::cerr << "Cannot write standard output\n";
    return exit_status::cannot_write;
  };
  try {
    const auto given = [&](std::string_view word) { return std::ranges::count(arguments, word) > 0; };
    if (given("--help")) return stop(exit_status::normal, help.substr(0, help.size() - 1), out);
    if (given("--version")) return stop(exit_status::normal, version_line, out);
    std::cerr << ' ' << banner << '\n';
    prompt_on_terminal();
    run_program(arguments, settings_on_standard_input(), out, std::cerr);
    return exit_status::normal;
  } catch (const failure& reason) {
    const ending end = ending_of(reason);
    return stop(end.status, end.line, end.on_standard_output ? out : std::cerr);
  } catch (const std::bad_alloc&) {
    return stop(exit_status::no_memory, no_memory_message, std::cerr);
  } catch (const std::length_error&) {  // a size beyond any memory
    return stop(exit_status::no_memory, no_memory_message, std::cerr);
  }
}

}  // namespace
}  // namespace corvantile

int main(int argc, char** argv) {
  const std::vector<std::string_view> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
  return corvantile::main(arguments);
}
