#include "corvantile/measuring/dispread.hpp"

#include "corvantile/formats/detect.hpp"
#include "corvantile/utils/failure.hpp"
#include "surroundings.hpp"

namespace corvantile::measuring {
namespace {

using Dispread = Surroundings;

TEST_F(Dispread, TellsEveryEndApart) {
  const struct {
    const char* habit;
    bool older;
    outcome how;
    const char *words, *file;
    std::size_t readings;
  } rows[] = {{"", false, outcome::done, "", "run.ti3", 22},
              {"", true, outcome::done, "", "run.ti3", 22},
              {"status 2", true, outcome::failed, "dispread ended with status 2", "", 0},
              {"silent", true, outcome::failed, "dispread ended with status 0 but wrote no ", "", 0},
              {"part", true, outcome::failed, "dispread ended with status 1; 11 readings are kept in ",
               "run.partial.ti3", 11},
              {"interrupt", false, outcome::interrupted, "dispread was interrupted", "", 0},
              {"wait", false, outcome::failed, "dispread took longer than 0.05 s and was ended", "", 0}};
  const auto chart = make_chart(17, chart_ramps::derived);
  for (const auto& r : rows) {
    SCOPED_TRACE(r.habit);
    set("FAKE_DISPREAD", r.habit);
    for (const char* name : {"run.ti3", "run.partial.ti3"}) std::filesystem::remove(path(name));
    if (r.older) write("run.ti3", "older");
    const bool waits = std::string_view(r.habit) == "wait";
    const dispread_result got = run_dispread(chart,
                                             {.program = FAKES "/dispread",
                                              .options = {"-d", "1"},
                                              .name = path("run"),
                                              .replace = r.older,
                                              .limit = std::chrono::milliseconds(waits ? 50 : 0)},
                                             stop_);
    EXPECT_EQ(got.status.how, r.how);
    EXPECT_TRUE(got.status.words.starts_with(r.words)) << got.status.words;
    EXPECT_EQ(got.file, *r.file == '\0' ? "" : path(r.file));
    EXPECT_EQ(got.readings, r.readings);
    EXPECT_EQ(got.whole, r.how == outcome::done);
    EXPECT_EQ(got.command, FAKES "/dispread -d 1 " + path("run"));
    if (r.older && !got.whole) {
      EXPECT_EQ(content("run.ti3"), "older") << "it comes back";
    }
    EXPECT_EQ(content("run.ti3.before"), "(none)");
    stop_.forget();
  }
}

TEST_F(Dispread, NeedsTheProgramAndAFreeName) {
  const auto chart = make_chart(5, chart_ramps::derived);
  const auto missing = run_dispread(chart, {.program = path("dispread"), .name = path("run")}, stop_);
  EXPECT_FALSE(missing.found);
  EXPECT_EQ(missing.status.words, "there is no program " + path("dispread"));
  write("run.ti3", "older");
  EXPECT_THROW(run_dispread(chart, {.program = FAKES "/dispread", .name = path("run")}, stop_), failure);
  EXPECT_EQ(content("run.ti3"), "older");
}

// The display that the tests of the kit measure: behind what is loaded, with drift and noise.
TEST_F(Dispread, PlaysADisplayBehindItsVideoTable) {
  set("FAKE_DISPLAY", "white_luminance=200 gamma=2,2,2 black_luminance=0");
  set("FAKE_DRIFT", "0.1");
  write("loaded.cal",
        "CAL\n\nNUMBER_OF_FIELDS 4\nBEGIN_DATA_FORMAT\nRGB_I RGB_R RGB_G RGB_B\nEND_DATA_FORMAT\n"
        "NUMBER_OF_SETS 2\nBEGIN_DATA\n0 0 0 0\n1 0.5 0.5 0.5\nEND_DATA\n");
  const std::vector<chart_patch> chart(3, chart_patch{{{1, 1, 1}}});
  run_dispread(chart, {.program = FAKES "/dispread", .name = path("run")}, stop_);
  const readings got = read_readings({"run.ti3", content("run.ti3")});
  ASSERT_EQ(got.rows.size(), 3U);
  EXPECT_TRUE(got.absolute);
  for (std::size_t i = 0; i < 3; ++i) {
    const double brighter = 1 + 0.1 * static_cast<double>(i) / 100;
    EXPECT_NEAR(got.rows[i].xyz[1], 200 * 0.25 * brighter, 1e-3) << "half the drive, squared";
  }
}

}  // namespace
}  // namespace corvantile::measuring
