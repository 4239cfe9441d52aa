// Arguments and standard input in, exit status out. Nothing else ends the process or catches anything.

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <iostream>
#include <new>
#include <ostream>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

#include "driver/run.hpp"
#include "driver/standard_output.hpp"
#include "utils/text.hpp"

namespace corvantile {
namespace {

constexpr std::string_view no_memory_message = "Allocation would exceed memory limit";

// A closed standard stream would give its number to the next file that is opened, and its text to that file. A
// reading end in its place makes every write fail instead.
void occupy_standard_descriptors() {
  while (true) {
    const int fd = ::open("/dev/null", O_RDONLY);
    if (fd > STDERR_FILENO) ::close(fd);
    if (fd < 0 || fd > STDERR_FILENO) return;
  }
}

void tell_a_terminal() {
  if (::isatty(STDIN_FILENO) == 0) return;
  std::cerr << "Waiting for settings on standard input, then Ctrl-D on a line of its own. For example:\n"
               "  &opts cvmode='CV1' temp=6500\n"
               "  wgfile='measurements.txt' /\n";
}

std::string all_of_standard_input() {
  std::string text;
  std::vector<char> block(1 << 14);
  while (true) {
    const ssize_t n = ::read(STDIN_FILENO, block.data(), block.size());
    if (n > 0) {
      text.append(block.data(), static_cast<std::size_t>(n));
    } else if (n == 0) {
      return text;
    } else if (errno != EINTR) {
      throw stop_run(exit_status::bad_settings, std::string("Cannot read standard input: ") + std::strerror(errno));
    }
  }
}

int main(std::span<const std::string_view> arguments) {
  occupy_standard_descriptors();
  // A reader that leaves, or a file that grows too large, is an error of that write and not the end of the process.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
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
    std::cerr << ' ' << banner << '\n';
    tell_a_terminal();
    run_program(arguments, all_of_standard_input(), out, std::cerr);
    return exit_status::normal;
  } catch (const stop_run& reason) {
    return stop(reason.status, reason.message, reason.to == stop_run::stream::out ? out : std::cerr);
  } catch (const std::bad_alloc&) {
    return stop(exit_status::no_memory, no_memory_message, std::cerr);
  } catch (const std::length_error&) {  // a size that no memory could hold
    return stop(exit_status::no_memory, no_memory_message, std::cerr);
  }
}

}  // namespace
}  // namespace corvantile

int main(int argc, char** argv) {
  const std::vector<std::string_view> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
  return corvantile::main(arguments);
}
