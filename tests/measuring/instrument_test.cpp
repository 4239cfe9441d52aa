#include "corvantile/measuring/instrument.hpp"

#include "surroundings.hpp"

namespace corvantile::measuring {
namespace {

using std::chrono::milliseconds;
using Instrument = Surroundings;

TEST(XyzIn, TakesTheThreeNumbers) {
  const struct {
    const char* printed;
    std::optional<vec3> want;
    const char* why;
  } rows[] = {
      {"\n Result is XYZ: 95.1 100.2 108.9, D50 Lab: 100.0 1.0 2.0\n", vec3{{95.1, 100.2, 108.9}}, "spotread"},
      {"1 2 3\nResult is XYZ: 4 5 6, Yxy: 5 0.3 0.3\n7 8 9\n", vec3{{4, 5, 6}}, "the label counts more"},
      {"1 2 3\r\n4 5 6\r\n", vec3{{4, 5, 6}}, "the last line"},
      {"0.31\t1e-1;2", vec3{{0.31, 0.1, 2}}, "tabs, semicolons, no line end"},
      {"1.5,2.5,3.5", vec3{{1.5, 2.5, 3.5}}, "commas separate"},
      {"1,5 2,5 3,5", vec3{{1.5, 2.5, 3.5}}, "commas are decimal marks"},
      {"-0.002 0.001 0", vec3{{-0.002, 0.001, 0}}, "dark readings scatter around 0"},
      {"1 2\n1 2 3 4\n", std::nullopt, "two numbers, four numbers"},
      {"Result is XYZ: 1 2, Lab\n", std::nullopt, "cut short"},
      {"nan 1 2", std::nullopt, "not a number"},
      {"-99 1 2", std::nullopt, "not light"},
      {"1 2 1e30", std::nullopt, "not measurable"},
      {"", std::nullopt, "nothing"}};
  for (const auto& r : rows) EXPECT_EQ(xyz_in(r.printed), r.want) << r.why;
}

TEST_F(Instrument, SaysWhyThereIsNoReading) {
  const struct {
    const char *command, *words;
    bool again;
  } rows[] = {{"echo", "'echo' printed nothing; expected X Y Z in cd/m2", true},
              {"echo no light", "'echo no light' printed no X Y Z; its last line is 'no light'", true},
              {"echo 1 2 3; echo USB gone >&2; exit 2",
               "'echo 1 2 3; echo USB gone >&2; exit 2' ended with status 2: USB gone", true},
              {"kill -SEGV $$", "'kill -SEGV $$' was ended by signal 11", true},
              {"no-such-tool", "'no-such-tool' ended with status 127: *not found", false},
              {"exec sleep 60", "'exec sleep 60' gave no reading in 0.03 s", false}};
  for (const auto& r : rows) {
    SCOPED_TRACE(r.command);
    const bool waits = std::string_view(r.command).starts_with("exec");
    const auto got = read_once({r.command, milliseconds(waits ? 30 : 5000)}, stop_);
    EXPECT_FALSE(got.xyz);
    EXPECT_EQ(got.status.how, outcome::failed);
    EXPECT_EQ(got.again_may_help, r.again);
    const std::string want = r.words;
    const std::size_t star = want.find('*');
    EXPECT_TRUE(got.status.words.starts_with(want.substr(0, star))) << got.status.words;
    if (star != std::string::npos) {
      EXPECT_TRUE(got.status.words.ends_with(want.substr(star + 1))) << got.status.words;
    }
  }
  EXPECT_EQ(read_once({"kill -INT $PPID; exec sleep 60"}, stop_).status.how, outcome::interrupted);
}

}  // namespace
}  // namespace corvantile::measuring
