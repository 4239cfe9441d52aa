#include "corvantile/measuring/pattern_server.hpp"

#include <cmath>
#include <future>
#include <gtest/gtest.h>

#include "corvantile/utils/failure.hpp"
#include "tests/measuring/fakes/generator.hpp"

namespace corvantile::measuring {
namespace {

using std::chrono::milliseconds;

TEST(PatternMessage, IsALengthAndXml) {
  const std::string message = pattern_message({.drive = {{0.5, 1, 0}}, .background = {{0, 0, 0.25}}, .window = 25});
  const std::string xml = message.substr(4);
  EXPECT_EQ(xml,
            R"(<?xml version="1.0" encoding="utf-8"?><calibration><color red="512" green="1023" blue="0" bits="10"/>)"
            R"(<background red="0" green="0" blue="256" bits="10"/>)"
            R"(<geometry x="0.2500" y="0.2500" cx="0.5000" cy="0.5000"/></calibration>)");
  EXPECT_EQ(message.substr(0, 3), std::string("\0\0\0", 3));
  EXPECT_EQ(static_cast<unsigned char>(message[3]), xml.size());
  EXPECT_NE(pattern_message({.drive = {}, .window = 100}).find(R"(x="0.0000" y="0.0000" cx="1.0000")"),
            std::string::npos);
}

TEST(PatternMessage, KeepsEightBits) {
  for (int code = 0; code < 256; ++code) {
    const std::string message = pattern_message({.drive = {{code / 255.0, 0, 0}}});
    const int ten = std::atoi(message.c_str() + message.find("red=\"") + 5);
    EXPECT_EQ(ten / 4, code) << "a generator that drops bits";
    EXPECT_EQ(std::lround(ten * 255 / 1023.0), code) << "one that rounds";
  }
}

constexpr milliseconds soon{2000};

// Whether the generator comes to show that code of red.
bool shows(const generator& g, int red, int patience = 400) {
  for (int i = 0; i < patience && g.last() != red; ++i) std::this_thread::sleep_for(milliseconds(5));
  return g.last() == red;
}

TEST(PatternServer, ServesEveryKindOfGenerator) {
  const struct {
    generator_habits habits;
    const char* why;
  } rows[] = {{{.late = milliseconds(40)}, "comes late"},
              {{.hang_up_after = 1}, "hangs up after each message, and comes back"},
              {{.says = "GET / HTTP/1.0\r\n\r\n"}, "talks"},
              {{.says = std::string("\0\0\1\0<?xml", 9)}, "sends half a message"},
              {{.says = std::string("\0\0\0\4") + "<a/><a/>"}, "sends twice the length it promised"},
              {{.says = std::string(2000000, 'x')}, "floods"}};
  for (const auto& r : rows) {
    SCOPED_TRACE(r.why);
    stop_signals stop;
    pattern_server server({.port = 0, .patience = soon}, stop);
    const generator g(server.port(), r.habits);
    for (const int red : {1023, 0, 512}) {
      bool seen = false;
      for (int attempt = 0; attempt < 20 && !seen; ++attempt) {  // what is sent to one that is leaving is lost
        ASSERT_TRUE(server.show({.drive = {{red / 1023.0, 0, 0}}}).ok());
        seen = shows(g, red, 20);
      }
      EXPECT_TRUE(seen);
    }
    EXPECT_TRUE(server.still_shown() || r.habits.hang_up_after > 0);
  }
}

TEST(PatternServer, NoticesThatThePatternIsGone) {
  stop_signals stop;
  pattern_server server({.port = 0, .patience = milliseconds(50)}, stop);
  const generator g(server.port(), {.hang_up_after = 1, .never_returns = true});
  ASSERT_TRUE(server.show({.drive = {{1, 1, 1}}}).ok());
  EXPECT_TRUE(shows(g, 1023));
  for (int i = 0; i < 400 && server.still_shown(); ++i) std::this_thread::sleep_for(milliseconds(5));
  EXPECT_FALSE(server.still_shown());
  const report gone = server.show({.drive = {}});
  EXPECT_EQ(gone.how, outcome::failed);
  EXPECT_NE(gone.words.find("no pattern generator connected to 127.0.0.1 port " + std::to_string(server.port()) +
                            " in 0.05 s"),
            std::string::npos)
      << gone.words;
}

TEST(PatternServer, TurnsToTheNewestGenerator) {
  stop_signals stop;
  pattern_server server({.port = 0, .patience = soon}, stop);
  const generator lost_its_power(server.port(), {.never_returns = true});
  ASSERT_TRUE(server.show({.drive = {{1, 0, 0}}}).ok());
  EXPECT_TRUE(shows(lost_its_power, 1023));
  const generator back_again(server.port());
  for (int i = 0; i < 400 && server.still_shown(); ++i) std::this_thread::sleep_for(milliseconds(5));
  EXPECT_FALSE(server.still_shown()) << "the new one shows nothing yet";
  ASSERT_TRUE(server.show({.drive = {{0.5, 0, 0}}}).ok());
  EXPECT_TRUE(shows(back_again, 512));
}

TEST(PatternServer, StopsWaitingWhenItIsTold) {
  stop_signals stop;
  pattern_server server({.port = 0}, stop);
  const auto stopper = std::async(std::launch::async, [] {
    std::this_thread::sleep_for(milliseconds(20));
    ::kill(::getpid(), SIGINT);
  });
  EXPECT_EQ(server.show({.drive = {}}).how, outcome::interrupted);
}

TEST(PatternServer, RefusesWhereItCannotListen) {
  stop_signals stop;
  const pattern_server first({.port = 0}, stop);
  const struct {
    listen_options where;
    std::string why;
  } rows[] = {{{.port = first.port()}, "another program listens there"},
              {{.address = "tv.example", .port = 0}, "expected an address in numbers"},
              {{.address = "192.0.2.1", .port = 0}, "Cannot assign requested address"}};
  for (const auto& r : rows) {
    try {
      const pattern_server second(r.where, stop);
      ADD_FAILURE() << r.why;
    } catch (const failure& f) {
      EXPECT_EQ(f.kind, fault::setting);
      EXPECT_NE(f.message.find(r.why), std::string::npos) << f.message;
    }
  }
}

}  // namespace
}  // namespace corvantile::measuring
