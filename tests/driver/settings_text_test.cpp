#include "corvantile/documents/settings_text.hpp"

#include <gtest/gtest.h>
#include <sstream>

#include "corvantile/documents/table_files.hpp"
#include "corvantile/driver/exit_status.hpp"
#include "corvantile/driver/run.hpp"
#include "corvantile/driver/standard_streams.hpp"

namespace corvantile {
namespace {

opts of(const std::string& assignments) { return read_opts("&opts " + assignments + "\n/"); }

// How `f` stops the run: status and message.
template <class F>
std::string stop_of(const F& f) {
  try {
    f();
    return "not at all";
  } catch (const failure& reason) {
    const ending stop = ending_of(reason);
    return std::to_string(stop.status) + (stop.on_standard_output ? " on out: " : ": ") + stop.line;
  }
}

TEST(Settings, EchoOfDefaultsAndChromaticities) {
  EXPECT_EQ(echo(of("")),
            "CVMode = unspecified\noutdir = .\nwgfile = \ngamfile = \ntlen = 256\nnbits = 0\nnumsegs = 5\n"
            "gamma = 2.2000000\nboundary_tol = .1000000E-02\nlumfrac = .9500000\nrowsum_margin = .5000000E-01\n"
            "minslope =  0.000    \nalpha = .5000000\nbeta = .8000000\nhwid = .0000000\n"
            "temp = -1.0000000\nwptemp = -1.0000000\n\n");
  EXPECT_EQ(echo(of("gamut_mapping='compress'")), echo(of(""))) << "only what differs from before is echoed";
  EXPECT_NE(echo(of("gamut_mapping='clip'")).find("gamut_mapping = clip\n"), std::string::npos);
  EXPECT_NE(echo(of("xytable=.3127 .329 .64 .33 .3 .6 .15 .06"))
                .find("numsegs = 5\nchromaticities (WRGB)\n"
                      "  .3127  .3290     .6400  .3300     .3000  .6000     .1500  .0600\ngamma = "),
            std::string::npos);
}

TEST(Settings, EveryFormOfTheGroup) {
  const char* rows[][3] = {
      // a group, the same plainly, what is special
      {"\xEF\xBB\xBF! before\r\n \n&opts\r\ntlen=5\r\n/", "tlen=5",
       "mark, comment, blank and CR LF before the group"},
      {"&opts/ tlen=7 'rubbish", "", "nothing is read after the slash"},
      {"&OPTS!c\n,,TLEN!c\n=!c\n5!/\n,\tNBits=-3,/", "tlen=5 nbits=-3",
       "comments between any words, idle commas, any case"},
      {"&opts tlen=5 tlen=6 tlen=,/", "tlen=6", "the last value wins; one left out keeps it"},
      {"&opts tlen= nbits=1*3 numsegs=1*/", "nbits=3", "no value at all, repeat counts of one"},
      {"&opts gamma=1.0d-3 alpha=2/3/", "gamma=0.001 alpha=2", "exponent; a slash ends the group anywhere"},
      {"&opts xytable=2*.1,,.3 2* .2/", "xytable=.1 .1 0 .3 0 0 .2 0", "repeated, and left out"},
      {"&opts xytable=8*1,,, tlen=5/", "tlen=5 xytable=1 1 1 1 1 1 1 1", "commas after the last value"},
      {"&opts xytable=1 nan(2) nan / ", "xytable=1 nan nan 0 0 0 0 0", "a value that could begin a key"},
      {"&opts xytable ( 2 , 2 ) = 1,2*2/", "xytable=0 0 0 1 2 2 0 0", "element and those after it"},
      {"&opts xytable(2:,2:3)=1 2/", "xytable=0 0 0 1 0 2 0 0", "one bound and both"},
      {"&opts xytable(:,::2)=1 2 3 4/", "xytable=1 2 0 0 3 4 0 0", "stride"},
      {"&opts xytable(2:1:-1 ,4:1:-3 )=1 2 3 4/", "xytable=4 3 0 0 0 0 2 1", "backwards, blanks behind"},
      {"&opts xytable(1,1)=.5 xytable(2,1)=.25/", "xytable=.5 .25 0 0 0 0 0 0", "one key twice in a row"},
  };
  for (const auto& [group, plainly, why] : rows)
    EXPECT_EQ(echo(read_opts(group)), echo(of(plainly))) << why << ": " << group;
}

TEST(Settings, AreReadNoFurtherThanTheirEnd) {
  for (const std::string whole :
       {"&opts/", "\xEF\xBB\xBF \n! /\n&opts outdir='it''s /' wgfile=\"'/\" ! ' /\n/", " n"})
    for (std::size_t n = 0; n <= whole.size(); ++n) {
      group_end end;  // in two pieces, cut anywhere
      EXPECT_EQ(end.passed(whole.substr(0, n)), n == whole.size()) << whole << n;
      EXPECT_EQ(end.passed(whole.substr(n)), n < whole.size()) << whole << n;
    }
}

TEST(Settings, Texts) {
  opts s = of("outdir='it''s \"a\"/!' wgfile=\"say \"\"x\"\"\" gamfile='ab \r\n  cd  '");
  EXPECT_EQ(s.outdir, "it's \"a\"/!");
  EXPECT_EQ(s.wgfile, "say \"x\"");
  EXPECT_NE(echo(of("grayfile='f'")).find("wptemp = -1.0000000\ngrayfile = f\n"), std::string::npos);
  EXPECT_EQ(of(opts_text(of("grayfile='f'")).substr(5)).grayfile, "f");
  EXPECT_EQ(s.gamfile, "ab   cd") << "over a line end, which is no part of it, and without trailing blanks";
  end_outdir_with_slash(s = of("outdir='out/'"));
  EXPECT_EQ(s.outdir, "out//") << "whatever it ends in";
  s = of("cvmode='" + std::string(40, 'c') + "'");
  EXPECT_EQ(s.cvmode, std::string(32, 'c'));
}

TEST(Settings, ErrorsNameLineKeyAndWhatWasExpected) {
  const char* rows[][2] = {
      {"", "line 1: expected the group '&opts', found the end of the input"},
      {"&opts(1) /", "line 1: expected the group '&opts', found '&opts(1)'"},
      {"\r\n&options /", "line 2: expected the group '&opts', found '&options'"},
      {"&opts tlen=5\n", "line 2: the closing '/' of the group is missing"},
      {"&opts nbits=1\n tlem=5/", "line 2: unknown key 'tlem'; the keys are cvmode, outdir, "},
      {"&opts tlen=\n\n5.0/", "line 3: tlen: expected an integer of 32 bits, found '5.0'"},
      {"&opts tlen=2147483648/", "tlen: expected an integer of 32 bits, found '2147483648'"},
      {"&opts gamma=5'x'/", "gamma: expected a blank, a comma or '/' after the value, found '''"},
      {"&opts gamma=2,,3/", "gamma: expected another key or the closing '/' after 1 value, found '3'"},
      {"&opts tlen=0*5/", "tlen: expected a repeat count from 1, with room for 1 value, found '0*5'"},
      {"&opts xytable=2 8*.5/", "expected a repeat count from 1, with room for 7 values, found '8*.5'"},
      {"&opts gamut_mapping='clamp'/", "gamut_mapping: expected 'compress' or 'clip', found 'clamp'"},
      {"&opts\noutdir='a\n\n/", "line 2: outdir: the text that begins here has no closing quote"},
      {"&opts tlen(1)=5/", "tlen: takes no index"},
      {"&opts xytable(3,1)=5/", "xytable: index 3 is not in 1..2"},
      {"&opts xytable(1:9,1)=5/", "xytable: index 9 is not in 1..2"},
      {"&opts xytable(1,99999999999999999999)=5/", "xytable: index 1000000000 is not in 1..4"},
      {"&opts xytable(:,4:1:0)=5/", "xytable: the section selects nothing"},
      {"&opts xytable(1:1,1)=5 6/", "xytable: expected another key or the closing '/' after 1 value, found '6'"},
  };
  for (const auto& [group, message] : rows) {
    const std::string said = stop_of([&, p = group] { read_opts(p); });
    EXPECT_EQ(said.find("4: Settings, line "), 0u) << group << ": " << said;
    EXPECT_NE(said.find(message), said.npos) << group << ": " << said;
  }
}

TEST(Settings, ModeMeasurementFileAndVerboseSwitch) {
  for (const auto& [name, mode] :
       {std::pair("1'", match_mode::cv1), {"2'", match_mode::cv2}, {"2_1'", match_mode::cv2_1}})
    for (const std::string prefix : {"cvmode='CV", "cvmode='cv"}) {
      opts p = of(prefix + name);
      name_mode(p);
      EXPECT_EQ(p.set.mode, mode) << name;
    }
  std::ostringstream none;
  const auto run_of = [&](const std::string& given) {
    return stop_of([&] { run_program({}, "&opts " + given + " /", none, none); });
  };
  EXPECT_EQ(run_of(""), "1:  CVMode unspecified");
  EXPECT_EQ(run_of("cvmode='Cv1'"), "2:  illegal CVMode: Cv1");
  EXPECT_EQ(run_of("cvmode='CV1' wgfile='  '"), "3:  profile file not specified");
  const auto verbose = [](std::vector<std::string_view> a) { return verbose_requested(a); };
  EXPECT_TRUE(verbose({"x", "-v"}));
  EXPECT_TRUE(verbose({"-verbose  "})) << "compared as padded text";
  EXPECT_FALSE(verbose({"-V", "--verbose", "-vv", " -v", ""}));
}

TEST(Settings, BuiltInStandardsFillATableOfZeros) {
  const char* rows[][3] = {
      // given, standard, filled
      {"", "sRGB", "xytable=.3127 .329 .64 .33 .3 .6 .15 .06"},
      {"", "AdobeRGB98", "xytable=.3127 .329 .64 .34 .21 .71 .15 .06"},
      {"", "SMPT-C", "xytable=.3127 .329 .63 .34 .31 .595 .155 .07"},
      {"gamma=1", "PAL", "gamma=2.2 xytable=.3127 .329 .64 .33 .3 .6 .15 .06"},
      {"xytable(2,4)=-.1", "sRGB", "xytable(2,4)=-.1"},                          // one entry is enough to keep it
      {"xytable=nan 7*-0", "sRGB", "xytable=.3127 .329 .64 .33 .3 .6 .15 .06"},  // NaN and -0 do not count
      {"xytable=8*nan", "sRGB", "xytable=8*nan"}};
  for (const auto& [given, standard, filled] : rows) {
    opts s = of(given);
    std::ostringstream out;
    fill_xytable(s.set, out, standard);
    EXPECT_EQ(echo(s), echo(of(filled))) << given << ' ' << standard;
    EXPECT_EQ(out.str(), std::string_view(standard) == "PAL" ? " unrecognized standard; using sRGB\n" : "");
  }
}

TEST(Settings, ValuesAreJudgedIfTheModeUsesThem) {
  constexpr auto one = match_mode::cv1, two = match_mode::cv2, both = match_mode::cv2_1;
  const auto judge = [](match_mode mode, const std::string& given) {
    opts p = of("temp=6500 xytable=.3127,.329,.64,.33,.3,.6,.15,.06 " + given);
    p.set.mode = mode;
    return stop_of([&] { check_settings(p.set, p.gamfile.empty()); });
  };
  const std::pair<match_mode, std::vector<std::string>> refused[] = {
      {one,
       {"tlen=1", "tlen=1048577", "nbits=32", "nbits=-1", "numsegs=2", "numsegs=257", "gamma=0", "temp=Infinity",
        "wptemp=NaN"}},
      {two, {"minslope=NaN", "gamma=Infinity", "lumfrac=0", "lumfrac=Infinity", "rowsum_margin=1"}},
      {both, {"alpha=NaN", "beta=NaN", "hwid=Infinity", "boundary_tol=NaN"}}};
  for (const auto& [mode, values] : refused)
    for (std::string given : values) {
      const std::string said = judge(mode, given);
      EXPECT_TRUE(said.starts_with("4: Settings: " + given.replace(given.find('='), 1, " = ") + ": ")) << said;
    }
  const char* gamuts[][2] = {{"NaN", "NaN 0.329 0.64 0.33 0.3 0.6 0.15 0.06: must be finite"},
                             {".3,0", "a y of 0"},
                             {".33,.33,.1,.1,.2,.2,.4,.4", "on one line"},
                             {".5,.5", "the white must lie inside"},
                             {".2,.5", "the white must lie inside"},
                             {".4,.1", "the white must lie inside"}};
  for (const auto& [xytable, why] : gamuts)
    EXPECT_NE(judge(two, std::string("xytable=") + xytable).find(why), std::string::npos) << xytable;
  const std::string unused = "temp=-1 beta=nan wptemp=nan hwid=nan lumfrac=0 rowsum_margin=1 xytable=.3,0";
  EXPECT_EQ(judge(one, "tlen=1048576 nbits=31 numsegs=256 " + unused), "not at all");
  EXPECT_EQ(maxcode(of("nbits=31").set), 2147483647);
  EXPECT_EQ(judge(one, "numsegs=-1 gamma=nan gamfile='g'"), "not at all");
  EXPECT_EQ(judge(two, "temp=nan alpha=nan xytable=.3127,.329,.64,.33,.15,.06,.3,.6"), "not at all");
}

}  // namespace
}  // namespace corvantile
