#include "driver/settings.hpp"

#include <cmath>
#include <gtest/gtest.h>
#include <sstream>

#include "utils/text.hpp"

namespace corvantile {
namespace {

// The settings that differ from their defaults, as text: what a profile did.
std::string changes(const settings& s) {
  const settings d;
  std::string out;
  const auto texts = {std::tuple{"outdir", &settings::outdir}, std::tuple{"wgfile", &settings::wgfile},
                      std::tuple{"gamfile", &settings::gamfile}, std::tuple{"cvmode", &settings::cvmode}};
  const auto integers = {std::tuple{"tlen", &settings::tlen}, std::tuple{"numsegs", &settings::numsegs},
                         std::tuple{"nbits", &settings::nbits}};
  const auto reals = {std::tuple{"gamma", &settings::gamma}, std::tuple{"alpha", &settings::alpha},
                      std::tuple{"temp", &settings::temp}};
  for (const auto& [name, m] : texts)
    if (s.*m != d.*m) out += std::string(name) + "=[" + s.*m + "] ";
  for (const auto& [name, m] : integers)
    if (s.*m != d.*m) out += std::string(name) + "=" + std::to_string(s.*m) + " ";
  for (const auto& [name, m] : reals)
    if (s.*m != d.*m) out += std::string(name) + "=" + free_format(s.*m).substr(1) + " ";
  if (s.xytable != d.xytable) {
    out += "xy";
    for (const vec2& xy : s.xytable) out += free_format(xy[0]) + free_format(xy[1]);
  }
  return std::string(trim(out));
}

template <class F>
std::optional<stop_run> stop_of(const F& f) {
  try {
    f();
    return std::nullopt;
  } catch (const stop_run& stop) {
    return stop;
  }
}

TEST(Settings, Defaults) {
  const settings s = read_settings("&opts /");
  EXPECT_EQ(echo(s),
            "CVMode = unspecified\noutdir = .\nwgfile = \ngamfile = \ntlen = 256\nnbits = 0\nnumsegs = 5\n"
            "gamma = 2.2000000\nboundary_tol = .1000000E-02\nlumfrac = .9500000\nrowsum_margin = .5000000E-01\n"
            "minslope =  0.000    \nalpha = .5000000\nbeta = .8000000\nhwid = .0000000\n"
            "temp = -1.0000000\nwptemp = -1.0000000\n\n");
  EXPECT_EQ(s.xytable, (std::array<vec2, 4>{}));
}

TEST(Settings, EveryFormOfTheGroup) {
  const struct {
    std::string_view profile;
    const char* want;
    const char* why;
  } rows[] = {
      {"&OPTS TLEN=5 NBits=3/", "tlen=5 nbits=3", "any case"},
      {"\xEF\xBB\xBF! before\r\n \n&opts\r\ntlen=5\r\n/", "tlen=5",
       "mark, comment, blank line, CR LF before the group"},
      {"&opts/ tlen=7 'rubbish", "", "nothing is read after the slash"},
      {"&opts!c\ntlen!c\n=!c\n5!/\n,nbits=3/", "tlen=5 nbits=3", "comments between any two words"},
      {"&opts,,tlen=5,,nbits=3,/", "tlen=5 nbits=3", "idle commas"},
      {"&opts tlen=5\tnbits=3\nnumsegs=4/", "tlen=5 numsegs=4 nbits=3", "tab and line end"},
      {"&opts tlen=5 tlen=6 tlen=,/", "tlen=6", "the last value wins; one left out keeps it"},
      {"&opts tlen= nbits=3/", "nbits=3", "no value at all"},
      {"&opts tlen=1*5 nbits=1*/", "tlen=5", "repeat counts of one"},
      {"&opts tlen=-2147483648 nbits=+0003/", "tlen=-2147483648 nbits=3", "integers"},
      {"&opts gamma=1.0d-3 alpha=+.25 temp=6.5E3/", "gamma=0.001 alpha=0.25 temp=6500", "reals"},
      {"&opts gamma=inf alpha=2/3/", "gamma=Infinity alpha=2", "infinity is read; a slash ends the group anywhere"},
      {"&opts outdir='it''s \"a\"/!' wgfile=\"say \"\"x\"\"\"/", "outdir=[it's \"a\"/!] wgfile=[say \"x\"]",
       "quotes"},
      {"&opts outdir='ab \r\n  cd' wgfile=' '/", "outdir=[ab   cd]", "over a line end, which is no part of the text"},
      {"&opts xytable=1 2,3 nbits=4/", "nbits=4 xy 1 2 3 0 0 0 0 0", "fewer values than elements"},
      {"&opts xytable=.1,,.3/", "xy 0.1 0 0.3 0 0 0 0 0", "one left out"},
      {"&opts xytable=3*.1 2* .2\n2*/", "xy 0.1 0.1 0.1 0 0 0.2 0 0", "repeated, and repeatedly left out"},
      {"&opts xytable=8*1,,, tlen=5/", "tlen=5 xy 1 1 1 1 1 1 1 1", "commas after the last value"},
      {"&opts xytable(1,2)=1/", "xy 0 0 1 0 0 0 0 0", "element"},
      {"&opts xytable ( 2 , 2 ) = 1,2*2/", "xy 0 0 0 1 2 2 0 0", "element and those after it"},
      {"&opts xytable(:,3)=1 2/", "xy 0 0 0 0 1 2 0 0", "column"},
      {"&opts xytable(1,:)=1 2 3 4/", "xy 1 0 2 0 3 0 4 0", "row"},
      {"&opts xytable(1:2,1)=1 2/", "xy 1 2 0 0 0 0 0 0", "bounds"},
      {"&opts xytable(2:,2:3)=1 2/", "xy 0 0 0 1 0 2 0 0", "one bound"},
      {"&opts xytable(:,::2)=1 2 3 4/", "xy 1 2 0 0 3 4 0 0", "stride"},
      {"&opts xytable(2:1:-1,4:1:-3)=1 2 3 4/", "xy 4 3 0 0 0 0 2 1", "backwards"},
      {"&opts xytable(1,1)=.5 xytable(2,1)=.25/", "xy 0.5 0.25 0 0 0 0 0 0", "one key twice in a row"},
  };
  for (const auto& r : rows) EXPECT_EQ(changes(read_settings(r.profile)), r.want) << r.why << ": " << r.profile;
  EXPECT_TRUE(std::isnan(read_settings("&opts xytable=1 nan(2) nan /").xytable[1][0]));
}

TEST(Settings, ErrorsNameLineKeyAndWhatWasExpected) {
  const struct {
    std::string_view profile;
    const char* message;
  } rows[] = {
      {"", "line 1: expected the group '&opts', found the end of the input"},
      {"junk\n&opts /", "line 1: expected the group '&opts', found 'junk'"},
      {"\n& opts /", "line 2: expected the group '&opts', found '&'"},
      {"&options /", "line 1: expected the group '&opts', found '&options'"},
      {"&opts tlen=5\n", "line 2: the closing '/' of the group is missing"},
      {"&opts\n tlem=5/", "line 2: unknown key 'tlem'; the keys are cvmode, outdir, "},
      {"&opts 5=tlen/", "line 1: expected a key or the closing '/', found '5=tlen'"},
      {"&opts tlen 5/", "line 1: tlen: expected '=', found '5'"},
      {"&opts tlen=\n\n5.0/", "line 3: tlen: expected an integer of 32 bits, found '5.0'"},
      {"&opts tlen=2147483648/", "tlen: expected an integer of 32 bits, found '2147483648'"},
      {"&opts tlen=5nbits=3/", "tlen: expected an integer of 32 bits, found '5nbits=3'"},
      {"&opts gamma='2'/", "gamma: expected a number, found '''"},
      {"&opts gamma=5'x'/", "gamma: expected a blank, a comma or '/' after the value, found '''"},
      {"&opts gamma=2 3/", "gamma: expected another key or the closing '/' after 1 value, found '3'"},
      {"&opts tlen=5\n&end", "line 2: tlen: expected another key or the closing '/' after 1 value, found '&end'"},
      {"&opts tlen=0*5/", "tlen: expected a repeat count from 1, with room for 1 value, found '0*5'"},
      {"&opts xytable=2 2000000000*.5/",
       "expected a repeat count from 1, with room for 7 values, found '2000000000*"},
      {"&opts xytable=99999999999999999999*/", "expected a repeat count from 1, with room for 8 values"},
      {"&opts cvmode=CV1/", "cvmode: expected a text in quotes, found 'CV1'"},
      {"&opts outdir='a'wgfile='b'/", "outdir: expected a blank, a comma or '/' after the value, found 'wgfile='"},
      {"&opts\noutdir='a\n\n/", "line 2: outdir: the text that begins here has no closing quote"},
      {"&opts tlen(1)=5/", "tlen: takes no index"},
      {"&opts xytable(1)=5/", "xytable: expected two indices, as in (1,2), found ')=5'"},
      {"&opts xytable(1,2,3)=5/", "xytable: expected ')' after two indices, found ','"},
      {"&opts xytable(,1)=5/", "xytable: expected an index, found ','"},
      {"&opts xytable(3,1)=5/", "xytable: index 3 is not in 1..2"},
      {"&opts xytable(1:9,1)=5/", "xytable: index 9 is not in 1..2"},
      {"&opts xytable(1,99999999999999999999)=5/", "xytable: index 1000000000 is not in 1..4"},
      {"&opts xytable(2:1,1)=5/", "xytable: the section selects nothing"},
      {"&opts xytable(:,1:4:0)=5/", "xytable: the section selects nothing"},
      {"&opts xytable(1:1,1)=5 6/", "xytable: expected another key or the closing '/' after 1 value, found '6'"},
      {"&opts xytable=1 nan=3/", "unknown key 'nan'"},
      {std::string_view("&opts \0/", 8), "expected a key or the closing '/', found '?"},
  };
  for (const auto& r : rows) {
    SCOPED_TRACE(r.profile);
    const auto stop = stop_of([&] { read_settings(r.profile); });
    ASSERT_TRUE(stop);
    EXPECT_EQ(stop->status, 4);
    EXPECT_EQ(stop->to, stop_run::stream::err);
    EXPECT_NE(stop->message.find(r.message), std::string::npos) << stop->message;
  }
}

TEST(Settings, EveryPrefixOfAProfileIsReadWithinItsBounds) {
  const std::string whole = "&opts cvmode='CV''1' xytable(1:2,:)=2*.1,,3* nan tlen=5!x\n/";
  for (std::size_t n = 0; n < whole.size(); ++n)
    EXPECT_TRUE(stop_of([&] { read_settings(std::string(whole, 0, n)); })) << n;
}

TEST(Settings, TextsAreCutAndLoseTrailingBlanks) {
  const settings s = read_settings("&opts cvmode='" + std::string(40, 'c') + "' wgfile='" + std::string(250, 'w') +
                                   std::string(10, ' ') + "x' outdir='" + std::string(300, 'o') + "'/");
  EXPECT_EQ(s.cvmode, std::string(32, 'c'));
  EXPECT_EQ(s.wgfile, std::string(250, 'w'));
  EXPECT_EQ(s.outdir, std::string(256, 'o'));
}

TEST(Settings, ModeAndMeasurementFile) {
  settings s;
  const struct {
    const char* cvmode;
    match_mode mode;
  } modes[] = {{"CV1", match_mode::cv1}, {"cv1", match_mode::cv1},     {"CV2", match_mode::cv2},
               {"cv2", match_mode::cv2}, {"CV2_1", match_mode::cv2_1}, {"cv2_1", match_mode::cv2_1}};
  for (const auto& m : modes) {
    s.cvmode = m.cvmode;
    EXPECT_EQ(mode_of(s), m.mode);
  }
  const struct {
    const char* cvmode;
    int status;
    const char* message;
  } bad[] = {
      {"unspecified", 1, " CVMode unspecified"}, {"Cv1", 2, " illegal CVMode: Cv1"}, {"", 2, " illegal CVMode: "}};
  for (const auto& b : bad) {
    s.cvmode = b.cvmode;
    const auto stop = stop_of([&] { mode_of(s); });
    ASSERT_TRUE(stop);
    EXPECT_EQ(stop->status, b.status);
    EXPECT_EQ(stop->message, b.message);
  }
  const auto stop = stop_of([&] { require_wgfile(read_settings("&opts wgfile='  '/")); });
  ASSERT_TRUE(stop);
  EXPECT_EQ(stop->status, 3);
  EXPECT_EQ(stop->message, " profile file not specified");
}

TEST(Settings, VerboseSwitch) {
  const auto verbose = [](std::vector<std::string_view> a) { return verbose_requested(a); };
  EXPECT_TRUE(verbose({"x", "-v"}));
  EXPECT_TRUE(verbose({"-verbose  "})) << "compared as padded text";
  EXPECT_FALSE(verbose({}));
  EXPECT_FALSE(verbose({"-V", "--verbose", "-vv", " -v", ""}));
}

TEST(Settings, BuiltInStandards) {
  const auto filled = [](std::string_view profile, std::string_view standard, std::string* said = nullptr) {
    settings s = read_settings(profile);
    std::ostringstream out;
    fill_xytable(s, out, standard);
    if (said != nullptr) *said = out.str();
    return changes(s);
  };
  EXPECT_EQ(filled("&opts /", "sRGB"), "xy 0.3127 0.329 0.64 0.33 0.3 0.6 0.15 0.06");
  EXPECT_EQ(filled("&opts /", "AdobeRGB98"), "xy 0.3127 0.329 0.64 0.34 0.21 0.71 0.15 0.06");
  EXPECT_EQ(filled("&opts /", "SMPT-C"), "xy 0.3127 0.329 0.63 0.34 0.31 0.595 0.155 0.07");
  std::string said;
  EXPECT_EQ(filled("&opts gamma=1/", "PAL", &said), "xy 0.3127 0.329 0.64 0.33 0.3 0.6 0.15 0.06")
      << "gamma is back at its default";
  EXPECT_EQ(said, " unrecognized standard; using sRGB\n");
  EXPECT_EQ(filled("&opts xytable(2,4)=-.1/", "sRGB"), "xy 0 0 0 0 0 0 0 -0.1")
      << "one entry given: kept as it stands";
  EXPECT_EQ(filled("&opts xytable=nan 7*-0/", "sRGB"), "xy 0.3127 0.329 0.64 0.33 0.3 0.6 0.15 0.06")
      << "not-a-number entries do not count";
  EXPECT_EQ(filled("&opts xytable=8*nan/", "sRGB"), "xy" + std::string(" NaN NaN NaN NaN NaN NaN NaN NaN"));
}

TEST(Settings, DerivedValuesAndEchoedChromaticities) {
  settings s = read_settings("&opts outdir='out/' nbits=31/");
  end_outdir_with_slash(s);
  EXPECT_EQ(s.outdir, "out//") << "whatever it ends in";
  EXPECT_EQ(maxcode(s), 2147483647);
  s.nbits = 8;
  EXPECT_EQ(maxcode(s), 255);
  for (const int n : {-1, 32, -2147483647 - 1}) {
    s.nbits = n;
    EXPECT_EQ(maxcode(s), 0) << "refused later";
  }
  std::ostringstream out;
  fill_xytable(s, out);
  EXPECT_NE(echo(s).find("numsegs = 5\nchromaticities (WRGB)\n"
                         "  .3127  .3290     .6400  .3300     .3000  .6000     .1500  .0600\ngamma = "),
            std::string::npos)
      << echo(s);
}

TEST(Settings, ValuesAreJudgedWhereTheModeUsesThem) {
  constexpr auto one = match_mode::cv1;
  constexpr auto two = match_mode::cv2;
  constexpr auto both = match_mode::cv2_1;
  const struct {
    const char* given;
    match_mode mode;
    const char* message;
  } rows[] = {
      // "": accepted
      {"", both, ""},
      {"tlen=1", one, "tlen = 1: "},
      {"tlen=-100000", two, "tlen = -100000: "},
      {"nbits=32", one, "nbits = 32: "},
      {"nbits=-1", one, "nbits = -1: "},
      {"nbits=31", one, ""},
      {"numsegs=2", one, "numsegs = 2: "},
      {"numsegs=0", one, "numsegs = 0: "},
      {"numsegs=256", one, ""},
      {"numsegs=257", one, "numsegs = 257: "},
      {"numsegs=-1", one, ""},
      {"minslope=nan", two, "minslope = NaN: "},
      {"gamma=0", one, "gamma = 0: "},
      {"gamma=inf", two, "gamma = Infinity: "},
      {"gamma=nan gamfile='g'", one, ""},
      {"temp=inf", one, "temp = Infinity: "},
      {"temp=nan", two, ""},
      {"alpha=nan", both, "alpha = NaN: "},
      {"beta=nan", one, ""},
      {"beta=nan temp=6500", one, "beta = NaN: "},
      {"hwid=inf temp=6500", both, "hwid = Infinity: "},
      {"wptemp=nan temp=6500", one, "wptemp = NaN: "},
      {"lumfrac=0", one, ""},
      {"lumfrac=0", two, "lumfrac = 0: "},
      {"rowsum_margin=1", two, "rowsum_margin = 1: "},
      {"boundary_tol=nan", both, "boundary_tol = NaN: "},
      {"xytable=.3,0", one, ""},
      {"xytable=.3,0", two, "a y of 0"},
      {"xytable=nan", two, "xytable = NaN 0.329 0.64 "},
      {"xytable=.33,.33,.1,.1,.2,.2,.4,.4", two, "on one line"},
      {"xytable=.7,.3", two, "the white must lie inside"},
  };
  for (const auto& r : rows) {
    SCOPED_TRACE(r.given);
    settings s = read_settings("&opts xytable=.3127,.329,.64,.33,.3,.6,.15,.06 " + std::string(r.given) + "/");
    const auto stop = stop_of([&] { check_settings(s, r.mode, s.gamfile.empty()); });
    ASSERT_EQ(stop.has_value(), *r.message != '\0');
    if (stop) {
      EXPECT_EQ(stop->status, 4);
      EXPECT_NE(stop->message.find(r.message), std::string::npos) << stop->message;
    }
  }
}

}  // namespace
}  // namespace corvantile
