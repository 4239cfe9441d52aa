#include "corvantile/measuring/pattern_server.hpp"

#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <fmt/core.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <system_error>

#include "corvantile/measuring/clock.hpp"
#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile::measuring {
namespace {

// An address of either family, as the socket calls want it.
struct socket_address {
  sockaddr_storage storage{};
  socklen_t size = 0;

  sockaddr* get() { return reinterpret_cast<sockaddr*>(&storage); }
};

std::optional<socket_address> address_of(const std::string& text, std::uint16_t port) {
  socket_address a;
  sockaddr_in v4{};
  sockaddr_in6 v6{};
  if (::inet_pton(AF_INET, text == "localhost" ? "127.0.0.1" : text.c_str(), &v4.sin_addr) == 1) {
    v4.sin_family = AF_INET;
    v4.sin_port = htons(port);
    a.size = sizeof v4;
    std::memcpy(&a.storage, &v4, sizeof v4);
  } else if (::inet_pton(AF_INET6, text.c_str(), &v6.sin6_addr) == 1) {
    v6.sin6_family = AF_INET6;
    v6.sin6_port = htons(port);
    a.size = sizeof v6;
    std::memcpy(&a.storage, &v6, sizeof v6);
  } else {
    return std::nullopt;
  }
  return a;
}

std::uint16_t port_of(int socket) {
  socket_address a;
  a.size = sizeof a.storage;
  ::getsockname(socket, a.get(), &a.size);
  sockaddr_in v4{};  // the port has the same place in both families
  std::memcpy(&v4, &a.storage, sizeof v4);
  return ntohs(v4.sin_port);
}

template <class T>
void set_option(int socket, int level, int option, const T& value) {
  ::setsockopt(socket, level, option, &value, sizeof value);
}

std::string colour_xml(const char* element, const vec3& drive) {
  constexpr double full = 1023;
  std::array<long, 3> code{};
  for (std::size_t c = 0; c < 3; ++c) code[c] = std::lround(std::clamp(drive[c], 0.0, 1.0) * full);
  return fmt::format(R"(<{} red="{}" green="{}" blue="{}" bits="10"/>)", element, code[0], code[1], code[2]);
}

// Throws away what the generator said. Returns false if it has hung up.
bool still_connected(int socket) {
  std::array<char, 16384> unread{};
  for (int turn = 0; turn < 64; ++turn) {  // one that talks without end has to wait
    const ssize_t n = ::recv(socket, unread.data(), unread.size(), MSG_DONTWAIT);
    if (n == 0) return false;
    if (n < 0) return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
  }
  return true;
}

}  // namespace

std::string pattern_message(const pattern& p) {
  const double side = std::sqrt(std::clamp(p.window, 0.01, 100.0) / 100);
  const double corner = (1 - side) / 2;
  const std::string xml = fmt::format(
      R"(<?xml version="1.0" encoding="utf-8"?><calibration>{}{}<geometry x="{:.4f}" y="{:.4f}" cx="{:.4f}" cy="{:.4f}"/>)"
      "</calibration>",
      colour_xml("color", p.drive), colour_xml("background", p.background), corner, corner, side, side);
  std::string message;
  for (const unsigned shift : {24U, 16U, 8U, 0U}) message += static_cast<char>((xml.size() >> shift) & 0xffU);
  return message + xml;
}

pattern_server::pattern_server(listen_options options, stop_signals& stop)
    : options_(std::move(options)), stop_(stop) {
  listen();
}

std::string pattern_server::place() const { return fmt::format("{} port {}", printable(options_.address), port_); }

void pattern_server::listen() {
  auto address = address_of(options_.address, options_.port);
  if (!address) {
    throw failure(fault::setting,
                  fmt::format("cannot listen on {}: expected an address in numbers, such as 127.0.0.1",
                              printable(options_.address)));
  }
  listener_.emplace(::socket(address->storage.ss_family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  set_option(listener_->get(), SOL_SOCKET, SO_REUSEADDR, 1);
  if (listener_->get() < 0 || ::bind(listener_->get(), address->get(), address->size) != 0 ||
      ::listen(listener_->get(), 8) != 0) {
    const int error = errno;
    throw failure(
        fault::setting,
        fmt::format("cannot listen on {} port {}: {}", printable(options_.address), options_.port,
                    error == EADDRINUSE ? "another program listens there" : std::generic_category().message(error)));
  }
  port_ = port_of(listener_->get());
}

void pattern_server::take_newest() {
  while (true) {
    descriptor caller(::accept4(listener_->get(), nullptr, nullptr, SOCK_CLOEXEC));
    if (caller.get() < 0) return;
    set_option(caller.get(), IPPROTO_TCP, TCP_NODELAY, 1);
    set_option(caller.get(), SOL_SOCKET, SO_KEEPALIVE, 1);
    const auto ms = options_.send_limit.count();
    set_option(caller.get(), SOL_SOCKET, SO_SNDTIMEO, timeval{ms / 1000, ms % 1000 * 1000});
    generator_.emplace(std::move(caller));
    told_ = false;
  }
}

bool pattern_server::connected() {
  take_newest();
  if (generator_ && !still_connected(generator_->get())) drop();
  return generator_.has_value();
}

report pattern_server::wait_for_generator() {
  const auto end = steady::now() + options_.patience;
  while (!connected()) {
    if (stop_.raised()) return {outcome::interrupted, "the wait for a pattern generator was interrupted"};
    if (steady::now() >= end) {
      return {outcome::failed,
              fmt::format("no pattern generator connected to {} in {:.3g} s: start it, give it this machine's "
                          "address and that port, and choose Resolve's protocol",
                          place(), std::chrono::duration<double>(options_.patience).count())};
    }
    std::array<pollfd, 2> files{{{listener_->get(), POLLIN, 0}, {stop_.file(), POLLIN, 0}}};
    ::poll(files.data(), files.size(), poll_time(end));
  }
  return {};
}

bool pattern_server::send(const std::string& message) {
  std::string_view rest = message;
  while (!rest.empty()) {
    const ssize_t n = ::send(generator_->get(), rest.data(), rest.size(), MSG_NOSIGNAL);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    rest.remove_prefix(static_cast<std::size_t>(n));
  }
  return true;
}

report pattern_server::show(const pattern& p) {
  const std::string message = pattern_message(p);
  constexpr int patient = 20;
  told_ = false;
  for (int attempt = 0; attempt < patient; ++attempt) {
    if (report waited = wait_for_generator(); !waited.ok()) return waited;
    if (send(message)) {
      told_ = true;
      return {};
    }
    drop();
  }
  return {outcome::failed, "the pattern generator hangs up before it takes a message"};
}

bool pattern_server::still_shown() { return connected() && told_; }

}  // namespace corvantile::measuring
