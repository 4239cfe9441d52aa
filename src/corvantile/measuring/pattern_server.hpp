#pragma once
// Patches on the screen of a pattern generator that speaks Resolve's calibration protocol: it connects to us and
// shows what we send. It never answers.
//
// A message is its length, four bytes big-endian, and XML that names the colour with its bits, the background, and
// the window as fractions of the screen.

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "corvantile/measuring/outcome.hpp"
#include "corvantile/measuring/stop_signals.hpp"
#include "corvantile/numerics/matrix.hpp"
#include "corvantile/utils/temporary_file.hpp"

namespace corvantile::measuring {

/// What the screen is to show. Drives are from 0 to 1.
struct pattern {
  vec3 drive;
  vec3 background = {};
  double window = 10;  ///< area of the patch in percent of the screen, above 0 to 100; it is centred
};

/// The whole message, length included. Colours have ten bits; a drive that is a multiple of 1/255 keeps its eight
/// bits, whether the generator rounds to them or drops the lowest two.
std::string pattern_message(const pattern& p);

struct listen_options {
  std::string address = "127.0.0.1";  ///< a number, v4 or v6, or `localhost`; 0.0.0.0 and :: let other machines in
  std::uint16_t port = 20002;         ///< 0: any that is free
  std::chrono::milliseconds patience{60000};   ///< how long to wait for a generator that is not there
  std::chrono::milliseconds send_limit{5000};  ///< how long a generator may leave a message untaken
};

/// Listens from its making to its end. One generator is served at a time: a newer connection takes over, because a
/// generator that lost its power never says goodbye. Whatever a generator sends is thrown away.
class pattern_server {
 public:
  /// Throws `fault::setting` if it cannot listen there: not an address of this machine, or the port is taken.
  pattern_server(listen_options options, stop_signals& stop);

  std::uint16_t port() const { return port_; }
  /// "127.0.0.1 port 20002"
  std::string place() const;

  /// Whether a generator is connected now.
  bool connected();

  /// Waits for a generator if there is none, and sends the pattern. If it hangs up meanwhile, waits for it (or the
  /// next one) to come back. It is on the screen some time later: nothing tells when.
  report show(const pattern& p);

  /// Whether the generator that got the last pattern is still there, so that this is what the screen shows.
  bool still_shown();

 private:
  void listen();
  void take_newest();
  report wait_for_generator();
  bool send(const std::string& message);
  void drop() { generator_.reset(); }

  listen_options options_;
  stop_signals& stop_;
  std::optional<descriptor> listener_;
  std::optional<descriptor> generator_;
  std::uint16_t port_ = 0;
  bool told_ = false;  // the present generator has got the last pattern
};

}  // namespace corvantile::measuring
