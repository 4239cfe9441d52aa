#include "corvantile/measuring/process.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fmt/core.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <system_error>
#include <termios.h>
#include <unistd.h>

#include "corvantile/formats/text_lines.hpp"
#include "corvantile/measuring/clock.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile::measuring {
namespace {

namespace fs = std::filesystem;

// Both ends close by themselves, also when another child starts.
struct pipe_ends {
  descriptor read{-1}, write{-1};

  static pipe_ends make() {
    std::array<int, 2> ends{-1, -1};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) return {};
    return {descriptor(ends[0]), descriptor(ends[1])};
  }
};

// Attributes and actions of posix_spawn, released at the end.
struct spawn_setup {
  spawn_setup(bool own_group, const sigset_t& mask) {
    ::posix_spawnattr_init(&attributes);
    ::posix_spawn_file_actions_init(&actions);
    sigset_t usual;  // we may ignore these; no program expects to be born like that
    ::sigemptyset(&usual);
    ::sigaddset(&usual, SIGPIPE);
    ::sigaddset(&usual, SIGXFSZ);
    ::posix_spawnattr_setsigdefault(&attributes, &usual);
    ::posix_spawnattr_setsigmask(&attributes, &mask);
    ::posix_spawnattr_setpgroup(&attributes, 0);
    const int flags = POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK | (own_group ? POSIX_SPAWN_SETPGROUP : 0);
    ::posix_spawnattr_setflags(&attributes, static_cast<short>(flags));
  }
  spawn_setup(const spawn_setup&) = delete;
  spawn_setup& operator=(const spawn_setup&) = delete;
  ~spawn_setup() {
    ::posix_spawn_file_actions_destroy(&actions);
    ::posix_spawnattr_destroy(&attributes);
  }
  void connect(int ours, int theirs) { ::posix_spawn_file_actions_adddup2(&actions, ours, theirs); }

  posix_spawnattr_t attributes{};
  posix_spawn_file_actions_t actions{};
};

std::vector<char*> pointers(std::vector<std::string>& texts) {
  std::vector<char*> all(texts.size() + 1, nullptr);
  std::ranges::transform(texts, all.begin(), [](std::string& text) { return text.data(); });
  return all;
}

std::vector<std::string> environment_with(const std::vector<std::string>& additions) {
  std::vector<std::string> all = additions;
  for (char** entry = ::environ; entry != nullptr && *entry != nullptr; ++entry) {
    const std::string_view old(*entry);
    const std::string_view name = old.substr(0, old.find('=') + 1);
    bool replaced = false;
    for (const std::string& added : additions) replaced = replaced || added.starts_with(name);
    if (!replaced) all.emplace_back(old);
  }
  return all;
}

// Starts it; returns 0 or an errno.
int start(const child& c, const std::string& program, spawn_setup& how, pid_t& pid) {
  std::vector<std::string> words = c.argv;
  std::vector<std::string> settings = environment_with(c.environment);
  return ::posix_spawn(&pid, program.c_str(), &how.actions, &how.attributes, pointers(words).data(),
                       pointers(settings).data());
}

// Reads what is there without waiting. Returns false at the end of the stream.
bool drain(int file, std::string& into) {
  constexpr std::size_t most = std::size_t{1} << 20U;
  std::array<char, 16384> buffer{};
  for (int turn = 0; turn < 64; ++turn) {  // a program that prints without end does not keep us from the clock
    const ssize_t n = ::read(file, buffer.data(), buffer.size());
    if (n < 0) return errno == EAGAIN || errno == EINTR;
    if (n == 0) return false;
    into.append(buffer.data(), std::min(static_cast<std::size_t>(n), most - std::min(most, into.size())));
  }
  return true;
}

// A running child, from its start to the moment when it has been waited for.
class running {
 public:
  running(const child& c, pid_t pid, bool own_group, stop_signals& stop)
      : c_(c), pid_(pid), own_group_(own_group), stop_(stop), handle_(open_handle(pid)) {
    if (c.limit.count() > 0) deadline_ = steady::now() + c.limit;
  }

  // `out` and `err` are to be read from, -1 for none.
  child_result wait(int out, int err) {
    std::array<pollfd, 4> files{
        {{handle_.get(), POLLIN, 0}, {stop_.file(), POLLIN, 0}, {out, POLLIN, 0}, {err, POLLIN, 0}}};
    while (true) {
      ::poll(files.data(), files.size(), handle_.get() < 0 ? often : poll_time(deadline_));
      if (files[2].fd >= 0 && !drain(out, result_.out)) files[2].fd = -1;
      if (files[3].fd >= 0 && !drain(err, result_.err)) files[3].fd = -1;
      pass_on_signals();
      if (has_ended()) break;
      if (deadline_ && steady::now() >= *deadline_) out_of_time();
    }
    if (files[2].fd >= 0) drain(out, result_.out);  // printed just before the end
    if (files[3].fd >= 0) drain(err, result_.err);
    return finish();
  }

 private:
  static constexpr int often = 20;  // milliseconds, if we have to look for ourselves (before Linux 5.3)

  // A file that becomes readable when the process ends.
  static descriptor open_handle(pid_t pid) { return descriptor(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0))); }

  void send(int signal) const { ::kill(own_group_ ? -pid_ : pid_, signal); }

  void pass_on_signals() {
    while (const auto arrived = stop_.next()) {
      asked_to_stop_ = true;
      if (own_group_) {
        send(SIGINT);
        begin_grace();
      } else if (!arrived->by_key) {
        send(arrived->signal);
      }
    }
  }

  void begin_grace() {
    ending_it_ = true;
    deadline_ = steady::now() + c_.grace;
  }

  void out_of_time() {
    if (ending_it_) {
      send(SIGKILL);
      deadline_.reset();
    } else {
      timed_out_ = true;
      send(SIGTERM);
      begin_grace();
    }
  }

  // It stays to be waited for, so that its number, and that of its group, belong to nobody else.
  bool has_ended() const {
    siginfo_t info{};
    return ::waitid(P_PID, static_cast<id_t>(pid_), &info, WEXITED | WNOHANG | WNOWAIT) != 0 || info.si_pid == pid_;
  }

  child_result finish() {
    if (own_group_ && ending_it_) send(SIGKILL);  // what is left of the group
    int status = 0;
    while (::waitpid(pid_, &status, 0) < 0 && errno == EINTR) {
    }
    const bool exited = WIFEXITED(status);
    result_.code = exited ? WEXITSTATUS(status) : WTERMSIG(status);
    result_.how = exited ? ending::exited : ending::killed;
    if (timed_out_) result_.how = ending::timed_out;
    if (asked_to_stop_ || (!exited && result_.code == SIGINT)) result_.how = ending::interrupted;
    if (!own_group_ && exited && result_.code == 0) {  // the child asked, and the person went on
      result_.how = ending::exited;
      stop_.forget();
    }
    return std::move(result_);
  }

  const child& c_;
  pid_t pid_;
  bool own_group_;
  stop_signals& stop_;
  descriptor handle_;
  std::optional<steady::time_point> deadline_;
  bool ending_it_ = false, timed_out_ = false, asked_to_stop_ = false;
  child_result result_{};
};

// The terminal's settings, put back if a program that was ended could not do it.
class terminal_settings {
 public:
  terminal_settings() : known_(::tcgetattr(STDIN_FILENO, &before_) == 0) {}
  void restore() const {
    if (known_ && ::tcgetpgrp(STDIN_FILENO) == ::getpgrp()) ::tcsetattr(STDIN_FILENO, TCSADRAIN, &before_);
  }

 private:
  termios before_{};
  bool known_;
};

child_result not_started(int error) { return {.how = ending::not_started, .code = error}; }

std::string_view program_name(const child& c) {
  const std::string_view whole = c.argv.empty() ? std::string_view("") : std::string_view(c.argv.front());
  return whole.substr(whole.rfind('/') + 1);
}

}  // namespace

child_result run_in_terminal(const child& c, stop_signals& stop) {
  const auto program = c.argv.empty() ? std::nullopt : find_program(c.argv.front());
  if (!program) return {};
  if (stop.raised()) return {.how = ending::interrupted};
  const terminal_settings terminal;
  spawn_setup how(false, stop.before());
  pid_t pid = 0;
  if (const int error = start(c, *program, how, pid); error != 0) return not_started(error);
  child_result ended = running(c, pid, false, stop).wait(-1, -1);
  if (!ended.ok()) terminal.restore();
  return ended;
}

child_result run_captured(const child& c, stop_signals& stop) {
  const auto program = c.argv.empty() ? std::nullopt : find_program(c.argv.front());
  if (!program) return {};
  if (stop.raised()) return {.how = ending::interrupted};
  pipe_ends in = pipe_ends::make(), out = pipe_ends::make(), err = pipe_ends::make();
  if (in.read.get() < 0 || out.read.get() < 0 || err.read.get() < 0) return not_started(errno);
  spawn_setup how(true, stop.before());
  how.connect(in.read.get(), STDIN_FILENO);
  how.connect(out.write.get(), STDOUT_FILENO);
  how.connect(err.write.get(), STDERR_FILENO);
  pid_t pid = 0;
  if (const int error = start(c, *program, how, pid); error != 0) return not_started(error);
  for (descriptor* end : {&in.read, &in.write, &out.write, &err.write}) end->close();
  for (const descriptor* end : {&out.read, &err.read}) ::fcntl(end->get(), F_SETFL, O_NONBLOCK);
  return running(c, pid, true, stop).wait(out.read.get(), err.read.get());
}

std::string words_for(const child& c, const child_result& r) {
  const std::string name = printable(program_name(c));
  const auto with_complaint = [&](const std::string& words) {
    const std::string_view said = last_line(r.err);
    return said.empty() ? words : words + ": " + ascii(said.substr(0, 200));
  };
  switch (r.how) {
    case ending::exited:
      return with_complaint(fmt::format("{} ended with status {}", name, r.code));
    case ending::killed:
      return with_complaint(fmt::format("{} was ended by signal {}", name, r.code));
    case ending::not_found:
      return fmt::format("there is no program {}", c.argv.empty() ? "" : printable(c.argv.front()));
    case ending::not_started:
      return fmt::format("{} cannot be started: {}", name, std::generic_category().message(r.code));
    case ending::timed_out:
      return with_complaint(fmt::format("{} took longer than {:.3g} s and was ended", name,
                                        std::chrono::duration<double>(c.limit).count()));
    case ending::interrupted:
      break;
  }
  return fmt::format("{} was interrupted", name);
}

std::optional<std::string> find_program(const std::string& name, std::string_view path) {
  const auto runs = [](const fs::path& p) {
    std::error_code none;
    return fs::is_regular_file(p, none) && ::access(p.c_str(), X_OK) == 0;
  };
  if (name.find('/') != std::string::npos) return runs(name) ? std::optional(name) : std::nullopt;
  while (!name.empty() && !path.empty()) {
    const std::string_view folder = path.substr(0, path.find(':'));
    path.remove_prefix(std::min(path.size(), folder.size() + 1));
    const fs::path candidate = fs::path(folder) / name;
    if (!folder.empty() && runs(candidate)) return candidate.string();
  }
  return std::nullopt;
}

std::optional<std::string> find_program(const std::string& name) {
  const char* path = std::getenv("PATH");
  return find_program(name, path != nullptr ? path : "");
}

std::string_view last_line(std::string_view text) {
  constexpr std::string_view margins = " \t\r\n";
  text = text.substr(0, text.find_last_not_of(margins) + 1);
  return without_margins(text.substr(text.find_last_of("\r\n") + 1));
}

}  // namespace corvantile::measuring
