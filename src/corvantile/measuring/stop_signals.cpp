#include "corvantile/measuring/stop_signals.hpp"

#include <array>
#include <cerrno>
#include <poll.h>
#include <sys/signalfd.h>
#include <system_error>
#include <unistd.h>

#include "corvantile/measuring/clock.hpp"

namespace corvantile::measuring {
namespace {

sigset_t not_ignored() {
  sigset_t set;
  ::sigemptyset(&set);
  for (const int signal : std::array{SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction now {};
    if (::sigaction(signal, nullptr, &now) == 0 && now.sa_handler != SIG_IGN) ::sigaddset(&set, signal);
  }
  return set;
}

}  // namespace

stop_signals::stop_signals() : watched_(not_ignored()), file_(::signalfd(-1, &watched_, SFD_CLOEXEC | SFD_NONBLOCK)) {
  if (file_.get() < 0) throw std::system_error(errno, std::generic_category(), "signalfd");
  ::pthread_sigmask(SIG_BLOCK, &watched_, &before_);
}

stop_signals::~stop_signals() { ::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

std::optional<stop_signals::arrival> stop_signals::next() {
  signalfd_siginfo info{};
  if (::read(file_.get(), &info, sizeof info) != static_cast<ssize_t>(sizeof info)) return std::nullopt;
  const arrival a{static_cast<int>(info.ssi_signo), info.ssi_code == SI_KERNEL};
  if (first_ == 0) first_ = a.signal;
  return a;
}

bool stop_signals::raised() {
  while (next()) {
  }
  return first_ != 0;
}

bool stop_signals::pause(std::chrono::milliseconds how_long) {
  const auto end = steady::now() + how_long;
  while (!raised()) {
    if (steady::now() >= end) return true;
    pollfd waiting{file_.get(), POLLIN, 0};
    ::poll(&waiting, 1, poll_time(end));
  }
  return false;
}

}  // namespace corvantile::measuring
