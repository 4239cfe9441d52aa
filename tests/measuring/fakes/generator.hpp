#pragma once
// A pattern generator: it connects to a port of the loopback address and notes the colours that it is sent.

#include <arpa/inet.h>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <netinet/in.h>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace corvantile::measuring {

struct generator_habits {
  std::chrono::milliseconds late{0};  // before it connects
  int hang_up_after = 0;              // messages, then it connects again; 0: never
  bool never_returns = false;         // once it has hung up
  std::string says = {};              // what it sends when it has connected
};

// Runs until `stop`, or the other side is gone. `colour` gets the codes of red, green, blue and the whole message.
inline void play_generator(std::uint16_t port, const generator_habits& habits, const std::atomic<bool>& stop,
                           const std::function<void(const std::vector<int>&, const std::string&)>& colour) {
  std::this_thread::sleep_for(habits.late);
  while (!stop) {
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in at{};
    at.sin_family = AF_INET;
    at.sin_port = htons(port);
    at.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(fd, reinterpret_cast<sockaddr*>(&at), sizeof at) != 0) {
      ::close(fd);
      return;
    }
    timeval soon{0, 20000};  // to look at `stop`
    ::setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &soon, sizeof soon);
    if (!habits.says.empty()) ::send(fd, habits.says.data(), habits.says.size(), MSG_NOSIGNAL);
    const auto take = [&](std::size_t n) {
      std::string bytes;
      while (bytes.size() < n && !stop) {
        char byte = 0;
        const ssize_t got = ::recv(fd, &byte, 1, 0);
        if (got == 0) break;
        if (got > 0) bytes += byte;
      }
      return bytes;
    };
    for (int messages = 1; !stop; ++messages) {
      const std::string head = take(4);
      if (head.size() < 4) break;
      std::size_t size = 0;
      for (const char c : head) size = size * 256 + static_cast<unsigned char>(c);
      const std::string xml = take(size);
      std::vector<int> codes(3);
      const std::size_t element = xml.find("<color ");
      if (xml.size() < size || element == std::string::npos) break;
      if (std::sscanf(xml.c_str() + element, "<color red=\"%d\" green=\"%d\" blue=\"%d\"", &codes[0], &codes[1],
                      &codes[2]) == 3)
        colour(codes, xml);
      if (messages == habits.hang_up_after) break;
    }
    ::close(fd);
    if (habits.never_returns) return;
  }
}

// One in a thread of its own. `screen` gets "r g b" from 0 to 1, on disk before anybody can ask.
class generator {
 public:
  explicit generator(std::uint16_t port, generator_habits habits = {}, std::string screen = {})
      : thread_([this, port, habits = std::move(habits), screen = std::move(screen)] {
          play_generator(port, habits, stop_, [&](const std::vector<int>& codes, const std::string&) {
            if (!screen.empty()) write_screen(screen, codes);
            ++shown_;
            last_ = codes[0];
          });
        }) {}
  generator(const generator&) = delete;
  generator& operator=(const generator&) = delete;
  ~generator() {
    stop_ = true;
    thread_.join();
  }
  int shown() const { return shown_; }
  int last() const { return last_; }

  static void write_screen(const std::string& path, const std::vector<int>& codes) {
    const std::string next = path + ".next";
    if (std::FILE* file = std::fopen(next.c_str(), "w"); file != nullptr) {
      std::fprintf(file, "%.17g %.17g %.17g\n", codes[0] / 1023.0, codes[1] / 1023.0, codes[2] / 1023.0);
      std::fclose(file);
      std::rename(next.c_str(), path.c_str());
    }
  }

 private:
  std::atomic<bool> stop_ = false;
  std::atomic<int> shown_ = 0, last_ = -1;
  std::thread thread_;
};

}  // namespace corvantile::measuring
