#include "corvantile/utils/program_start.hpp"

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

#include "corvantile/utils/temporary_file.hpp"

namespace corvantile {
namespace {

// If a standard stream is closed, the next file opened would get its number, and then its text. This opens /dev/null
// for reading in its place, so that writing fails instead.
void occupy_standard_descriptors() {
  while (true) {
    const int fd = ::open("/dev/null", O_RDONLY);
    if (fd > STDERR_FILENO) ::close(fd);
    if (fd < 0 || fd > STDERR_FILENO) return;
  }
}

}  // namespace

void start_program() {
  occupy_standard_descriptors();
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  remove_temporaries_on_signals();
}

}  // namespace corvantile
