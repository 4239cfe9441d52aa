#include "corvantile/measuring/run.hpp"

#include <array>
#include <cmath>
#include <csignal>
#include <sys/wait.h>

#include "corvantile/formats/detect.hpp"
#include "corvantile/measuring/pattern_server.hpp"
#include "corvantile/utils/failure.hpp"
#include "fakes/generator.hpp"
#include "surroundings.hpp"

namespace corvantile::measuring {
namespace {

using std::chrono::milliseconds;

TEST(WhyAgain, FollowsItsRule) {
  const auto light = [](double y) { return vec3{{0.95 * y, y, 1.09 * y}}; };
  const struct {
    std::vector<double> taken;
    std::optional<double> expected;
    bool again;
    const char* why;
  } rows[] = {{{50}, {}, false, "nothing is expected: bright is trusted"},
              {{0.5}, {}, true, "and dark is read twice"},
              {{50}, 55, false, "near enough"},
              {{50}, 80, true, "implausible"},
              {{50, 51}, 80, false, "two agree: the model was wrong"},
              {{50, 80}, 80, true, "which of them?"},
              {{50, 80, 65}, 80, false, "three are enough"},
              {{0.5}, 0.52, false, "dark and near enough"},
              {{0.5}, 0.6, true, "dark is taken more narrowly"},
              {{0.5, 0.6, 0.72, 0.9}, 0.6, true, "dark readings that scatter"},
              {{0.5, 0.6, 0.72, 0.9, 1.1}, 0.6, false, "five are enough"},
              {{0.0001}, 0.0005, false, "less than any instrument resolves"},
              {{0.2}, 50, true, "nearly no light from a bright patch"}};
  for (const auto& r : rows) {
    std::vector<vec3> taken;
    for (const double y : r.taken) taken.push_back(light(y));
    const auto expected = r.expected ? std::optional(light(*r.expected)) : std::nullopt;
    EXPECT_EQ(!why_again(taken, expected, 100, {}).empty(), r.again) << r.why;
  }
  const std::vector<vec3> off_in_blue{{{10, 10, 30}}};
  EXPECT_FALSE(why_again(off_in_blue, vec3{{10, 10, 10}}, 100, {}).empty()) << "X, Y and Z all count";
  const std::vector<vec3> three{light(1), light(90), light(2)};
  EXPECT_EQ(median_of(three), light(2)) << "a wild one does no harm";
}

TEST(Reordered, MovesOnlyWhatShowsNoDrift) {
  const auto chart = make_chart(17, chart_ramps::measured, 30);
  EXPECT_EQ(reordered(chart, 0), chart);
  const auto other = reordered(chart, 7);
  EXPECT_EQ(other, reordered(chart, 7));
  EXPECT_NE(other, reordered(chart, 8));
  EXPECT_TRUE(std::ranges::is_permutation(
      other, chart, {}, [](const auto& p) { return p.drive.v; }, [](const auto& p) { return p.drive.v; }));
  for (std::size_t i = 0; i < chart.size(); ++i) {
    const vec3& d = chart[i].drive;
    if (d == vec3{{1, 1, 1}} || d == vec3{}) {
      EXPECT_EQ(other[i].drive, d) << i;
    }
  }
}

// A run without any waiting, over a display that is computed here.
class Run : public Surroundings {
 protected:
  Run() {
    options_.settle = options_.between_time = milliseconds(0);
    parts_.shown_by.show = [this](const vec3& drive) {
      on_screen_ = drive;
      return report{};
    };
    parts_.read = [this] { return instrument_reading{.xyz = light(on_screen_)}; };
  }
  static vec3 light(const vec3& d) {
    const double y = 0.5 + 30 * d[0] * d[0] + 60 * d[1] * d[1] + 10 * d[2] * d[2];
    return {{0.9 * y, y, 1.1 * y}};
  }
  report begin() {
    std::filesystem::remove(path("j"));
    journal j = journal::begin(path("j"), facts_, so_far_);
    return measure(chart_, parts_, options_, j, so_far_, stop_);
  }
  report resume() {
    journal j = journal::resume(path("j"), facts_, std::array{chart_fact}, so_far_);
    return measure(chart_, parts_, options_, j, so_far_, stop_);
  }

  std::vector<chart_patch> chart_ = make_chart(5, chart_ramps::derived);
  std::vector<fact> facts_ = facts_of(chart_, {"2024-05-01", "spotread -e \"x\"", "a test", "Ünit \"7\""});
  run_options options_;
  run_parts parts_;
  journal_content so_far_;
  vec3 on_screen_;
};

TEST_F(Run, LeavesAFileThatTheKitReads) {
  int count = 0;
  parts_.read = [&] {
    vec3 xyz = light(on_screen_);
    if (++count == 4) xyz = 3.0 * xyz;  // somebody passed with a lamp: the second patch was read twice, being dark
    return instrument_reading{.xyz = xyz};
  };
  parts_.expect = [](const vec3& drive, std::span<const measured_patch>) { return std::optional(light(drive)); };
  std::vector<measured_patch> told;
  parts_.tell = [&](const progress& p) {
    told.push_back(p.last);
    EXPECT_EQ(p.done, told.size());
    EXPECT_EQ(p.of, chart_.size());
    EXPECT_EQ(p.done == p.of, p.seconds_left == 0);
    EXPECT_EQ(p.drift.value_or(-1), 0);
  };
  ASSERT_TRUE(begin().ok());
  const std::string file = readings_file(so_far_);
  const readings got = read_readings({"run.ti3", file});
  ASSERT_EQ(got.rows.size(), chart_.size());
  EXPECT_TRUE(got.absolute);
  EXPECT_EQ(got.date, "2024-05-01");
  EXPECT_EQ(got.instrument, "spotread -e 'x'");
  for (std::size_t i = 0; i < chart_.size(); ++i) {
    for (std::size_t c = 0; c < 3; ++c) {
      EXPECT_NEAR(got.rows[i].drive[c], chart_[i].drive[c], 1e-15);
      EXPECT_DOUBLE_EQ(got.rows[i].xyz[c], light(chart_[i].drive)[c]) << i;
    }
  }
  EXPECT_NE(file.find("was read 3 times: Y "), std::string::npos) << "the lamp, told";
  EXPECT_EQ(told, patches_of(so_far_)) << "as it was told";
  EXPECT_NE(file.find("# display: Unit"), std::string::npos) << file;
}

TEST_F(Run, GoesOnAfterAKillAtAnyReading) {
  ASSERT_TRUE(begin().ok());
  const std::string whole = content("j");
  const std::size_t readings = so_far_.entries.size();
  for (std::size_t last = 1; last < readings; ++last) {
    const pid_t other = ::fork();
    if (other == 0) {
      std::size_t count = 0;
      parts_.read = [&] {
        if (count++ == last) ::raise(SIGKILL);
        return instrument_reading{.xyz = light(on_screen_)};
      };
      begin();
      ::_exit(9);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(other, &status, 0), other);
    ASSERT_TRUE(WIFSIGNALED(status));
    ASSERT_EQ(parse_journal("j", content("j")).entries.size(), last) << "all readings before it are on disk";
    ASSERT_TRUE(resume().ok());
    EXPECT_EQ(content("j"), whole);
  }
  EXPECT_TRUE(resume().ok()) << "there is nothing left to do";
  chart_[1].drive[0] = 0.5;
  EXPECT_THROW(resume(), failure) << "another chart under the same name";
}

TEST_F(Run, SaysWhyItEnds) {
  int count = 0;
  const auto fails = [&](bool again) {
    return instrument_reading{.xyz = {}, .status = {outcome::failed, "no light"}, .again_may_help = again};
  };
  parts_.read = [&] { return ++count == 3 ? fails(true) : instrument_reading{.xyz = light(on_screen_)}; };
  EXPECT_TRUE(begin().ok()) << "one failure is mended by a second try";
  count = 0;
  parts_.read = [&] { return ++count >= 3 ? fails(true) : instrument_reading{.xyz = light(on_screen_)}; };
  const report broken = begin();
  EXPECT_EQ(broken.how, outcome::failed);
  EXPECT_EQ(broken.words, "no light");
  EXPECT_EQ(count, 4) << "tried twice";
  EXPECT_EQ(so_far_.entries.size(), 2U) << "what there is stays";
  count = 0;
  parts_.read = [&] { return ++count >= 3 ? fails(false) : instrument_reading{.xyz = light(on_screen_)}; };
  begin();
  EXPECT_EQ(count, 3) << "a second try would not help";
  parts_.read = [&] {
    ::raise(SIGINT);
    return instrument_reading{.xyz = light(on_screen_)};
  };
  EXPECT_EQ(begin().how, outcome::interrupted);
  EXPECT_EQ(so_far_.entries.size(), 1U) << "the reading that was taken is kept";
}

TEST_F(Run, ShowsAgainWhatTheScreenLost) {
  std::vector<vec3> shown;
  int asked = 0;
  parts_.shown_by.show = [&](const vec3& drive) {
    shown.push_back(drive);
    on_screen_ = drive;
    return report{};
  };
  parts_.shown_by.still_shown = [&] { return ++asked != 2; };  // lost while the first patch was read
  const vec3 gray{{0.25, 0.25, 0.25}};
  options_.between = gray;
  ASSERT_TRUE(begin().ok());
  const vec3 white{{1, 1, 1}};
  ASSERT_GT(shown.size(), 5U);
  EXPECT_EQ((std::vector<vec3>(shown.begin(), shown.begin() + 5)), (std::vector{gray, white, gray, white, gray}));
  EXPECT_EQ(so_far_.entries.front().drive, white);
  EXPECT_EQ(patches_of(so_far_).front().taken, 1U) << "the reading in doubt does not count";
  parts_.shown_by.still_shown = [] { return false; };
  EXPECT_EQ(begin().how, outcome::failed) << "but not for ever";
}

// Everything at once: a generator that hangs up, a command that fails once, a display that gets dimmer.
TEST_F(Run, MeasuresOverTheFakes) {
  set("FAKE_SPOTREAD", "once");
  set("FAKE_DISPLAY", "white_luminance=150");
  set("FAKE_DRIFT", "-0.2");
  pattern_server server({.port = 0, .patience = milliseconds(5000)}, stop_);
  const generator g(server.port(), {.late = milliseconds(20), .hang_up_after = 5}, path("screen"));
  options_.settle = milliseconds(30);
  parts_.shown_by = {[&](const vec3& drive) { return server.show({.drive = drive}); },
                     [&] { return server.still_shown(); }};
  parts_.read = [&] { return read_once({FAKES "/spotread -e -O"}, stop_); };
  double drift = 0;
  parts_.tell = [&](const progress& p) { drift = p.drift.value_or(0); };
  const report ended = begin();
  ASSERT_TRUE(ended.ok()) << ended.words;
  const auto patches = patches_of(so_far_);
  ASSERT_EQ(patches.size(), chart_.size());
  EXPECT_NEAR(patches.front().xyz[1], 150, 0.1);
  EXPECT_LT(drift, -1) << "at least five readings lie between the whites";
  EXPECT_GT(drift, -20);
}

}  // namespace
}  // namespace corvantile::measuring
