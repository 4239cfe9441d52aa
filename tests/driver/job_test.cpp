// Small jobs, run within the test on simulated displays: what they write and report, and how they stop.

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <set>
#include <sstream>
#include <tuple>
#include <unistd.h>

#include "corvantile/colour/color_metrics.hpp"
#include "corvantile/documents/measurement_file.hpp"
#include "corvantile/documents/point_files.hpp"
#include "corvantile/documents/table_files.hpp"
#include "corvantile/driver/exit_status.hpp"
#include "corvantile/driver/report.hpp"
#include "corvantile/driver/run.hpp"
#include "corvantile/utils/file_input.hpp"
#include "corvantile/utils/text.hpp"
#include "tests/monitor/fitted.hpp"

namespace corvantile {
namespace {

namespace fs = std::filesystem;
using names = std::set<std::string>;

// The names of the tables that a job wrote to out/, and the content of one.
names files() {
  names all;
  for (const auto& f : fs::directory_iterator("out")) all.insert(f.path().filename());
  return all;
}
using rows = std::vector<vec3>;
rows table(const std::string& name) {
  std::ifstream in("out/" + name);
  rows t;
  for (vec3 r; in >> r[0] >> r[1] >> r[2];) t.push_back(r);
  return t;
}
void clear() {
  fs::remove_all("out");
  fs::create_directory("out");
}

struct outcome {
  int status;
  std::string out, err;  // `err` ends with the message of a run that was stopped
};
outcome run_job(const std::string& options, bool verbose = false) {
  const std::vector<std::string_view> arguments(verbose ? 1 : 0, "-v");
  std::ostringstream out, err;
  int status = 0;
  try {
    run_program(arguments, "&opts tlen=17 wgfile='m.txt' outdir='out' " + options + " /", out, err);
  } catch (const failure& stop) {
    const ending end = ending_of(stop);
    status = end.status;
    err << end.line;
  }
  return {status, out.str(), err.str()};
}
void expect_stop(const std::string& options, int status, const std::string& fragment, const names& written = {}) {
  const outcome o = run_job(options);
  EXPECT_EQ(o.status, status) << options << ": " << o.err;
  EXPECT_NE(o.err.find(fragment), o.err.npos) << options << ": " << o.err;
  EXPECT_EQ(o.err.find("normal exit"), o.err.npos) << options;
  EXPECT_EQ(o.out, "") << options;
  EXPECT_EQ(files(), written) << options;
}

// A folder with the measurements of one display, where jobs run one after another.
struct Job : testing::Test {
  Job() {
    fs::create_directories(folder / "out");
    fs::current_path(folder);
    std::ofstream("m.txt") << measurement_text({.white_luminance = 100, .gamma = {{2.1, 2.2, 2.3}}});
  }
  void TearDown() override {
    fs::current_path("/");
    fs::remove_all(folder);
  }
  const fs::path folder = fs::temp_directory_path() / ("corvantile-job-" + std::to_string(::getpid()));
};

// The numbers in the lines below `title` in a report, searching from position `from`, which moves to the title.
std::vector<double> below(const std::string& title, const std::string& out, std::size_t& from) {
  from = out.find(title, from);
  std::istringstream in(from == out.npos ? "" : out.substr(from + title.size()));
  std::vector<double> v;
  for (double d = 0; in >> d;) v.push_back(d);
  return v;
}

TEST_F(Job, EachModeWritesItsFilesInOrder) {
  const std::string pre = "out/preLUT.txt", m = "out/matrix.txt", post = "out/postLUT.txt";
  const std::pair<std::string, std::vector<std::string>> cases[] = {
      {"CV1", {post}}, {"cv2", {pre, post, m}}, {"CV2_1", {post, m, pre}}};
  for (const auto& [mode, order] : cases) {
    const opts p = read_opts("&opts tlen=2 outdir='out/' /");
    settings set{.mode = *mode_named(mode), .tlen = 2};
    std::vector<std::string> paths;
    for (const text_file& f : table_files(solve(set, load_measurements("m.txt")), p)) paths.push_back(f.path);
    EXPECT_EQ(paths, order);
    EXPECT_EQ(run_job("cvmode='" + mode + "'").err, " normal exit\n");
  }
}

// The report agrees with what the written files do to the modelled display, and that is what was asked for.
TEST_F(Job, ReportTellsWhatTheTablesDo) {
  const std::tuple<std::string, double, double> cases[] = {
      // Exponent; kelvin of the bright half as the CCT formula is published to read, 0 without a gray match
      {"CV1' temp=5000 gamma=1.8", 1.8, 5009.6470},
      {"CV1' temp=9300 tlen=64", 2.2, 9287.0084},
      {"CV2' tlen=1024", 2.2, 0},
      {"CV2_1' temp=6504", 2.2, 6502.3051}};
  const monitor mon = loadmonitor("m.txt", 5);
  EXPECT_EQ(mon.inpcurve, makemonitor(load_measurements("m.txt")).inpcurve);
  EXPECT_EQ(pp_poly_count(loadmonitor("m.txt").inpcurve[2]), 8) << "another default than the fit's own";
  for (const auto& [options, gamma, kelvin] : cases) {
    SCOPED_TRACE(options);
    clear();
    const bool gray = kelvin > 0, two_tables = options.starts_with("CV2");
    const std::string out = run_job("cvmode='" + options, true).out;
    std::size_t at = 0;
    const std::vector<double> cct = below(" seconds\n\n\n CCT\n", out, at);
    const std::vector<double> Y = below("\n output luminance\n", out, at);

    const rows pre = table("preLUT.txt"), m = table("matrix.txt"), post = table("postLUT.txt");
    ASSERT_EQ(std::pair(cct.size(), Y.size()), std::pair(post.size(), post.size()));
    const std::size_t last = post.size() - 1;
    for (std::size_t i = 0; i < post.size(); ++i) {
      vec3 drive = post[i];
      for (std::size_t k = 0; two_tables && k < 3; ++k) {  // the way users apply the tables
        const double x =
            (m[k][0] * pre[i][0] + m[k][1] * pre[i][1] + m[k][2] * pre[i][2]) * static_cast<double>(last);
        const std::size_t j = std::min(static_cast<std::size_t>(x), last - 1);
        drive[k] = post[j][k] + (x - static_cast<double>(j)) * (post[j + 1][k] - post[j][k]);
      }
      EXPECT_NEAR(Y[i], inp2out_vec(mon, drive)[1], 1e-11 * Y.back());
      const double s = static_cast<double>(i) / static_cast<double>(last);
      if (!gray || s < 0.5) continue;  // there the dark is blended in
      EXPECT_NEAR(Y[i], std::pow(s, gamma) * Y.back(), 2e-6 * Y.back());
      EXPECT_NEAR(cct[i], kelvin, s == 1 ? 0.1 : 1e-3);
    }
  }
}

TEST_F(Job, GraysTakeAnyWhite) {
  for (const std::string mode : {"cvmode='CV1'", "cvmode='CV2_1'"}) {
    const std::string out = run_job(mode + " white=.3127 .3290", true).out;
    EXPECT_NE(out.find("\nwptemp = -1.0000000\nwhite = .3127000 .3290000\n\n"), out.npos);
    std::size_t at = 0;
    const std::vector<double> distance = below("\n distance from white in u'v'\n", out, at);
    ASSERT_EQ(distance.size(), 17u);
    for (std::size_t i = 8; i < 17; ++i) EXPECT_LT(distance[i], 2e-5) << "where no dark is blended in";
  }
  expect_stop("cvmode='CV1' temp=6500 white=.3 .3", 4, "white = 0.3 0.3: cannot be combined with temp",
              {"postLUT.txt", "preLUT.txt", "matrix.txt"});
  for (const char* none : {".3,0", ".8,.3", "NaN,.3"})
    EXPECT_EQ(run_job(std::string("cvmode='CV1' white=") + none).status, 4) << none;
}

TEST(Report, RampsEndAtFullDriveSeenAgainstColumnSumsAndNumbersAloneCount) {
  const auto syn =
      make_synthetic_monitor("t", {{vec3{{41, 21, 2}}, vec3{{36, 72, 12}}, vec3{{18, 7, 95}}}}, {{0, 1}, {0, 1}});
  const vec3 full{{1, 1, 1}}, white{{64, 120, 120}};
  monitor holed = composite;
  holed.fe.pre[0] = {{0, 0.9, 1}, {0, 0.9, std::nan("")}};
  std::ostringstream out;
  report_ramps(out, plain, syn);
  report_ramps(out, holed, syn);
  std::size_t at = 0;
  std::vector<double> ramp;
  std::set<std::vector<double>> ramps;
  for (const char* name : {"red", "green", "blue", "yellow", "magenta", "cyan", "gray"}) {
    ramp = below(std::string(" ") + name + " ramp errmax = ", out.str(), at = 0);
    EXPECT_EQ(ramp[0], *std::max_element(ramp.begin() + 1, ramp.end())) << name;
    EXPECT_TRUE(ramps.insert(ramp).second) << name;
  }
  EXPECT_EQ(ramp.back(),
            deltae2000_vec(xyz2lab_vec(syn.primaries * full, white), xyz2lab_vec(inp2out_vec(plain, full), white)));
  EXPECT_NE(out.str().find("\n NaN\n"), std::string::npos);
  EXPECT_EQ(out.str().find("errmax =  NaN"), std::string::npos);
}

TEST_F(Job, EverySettingReachesTheSolution) {
  const auto tables = [](const std::string& options) {
    EXPECT_EQ(run_job("cvmode='CV2_1' temp=6500 wptemp=7000 " + options).status, 0) << options;
    return *read_file("out/preLUT.txt") + *read_file("out/matrix.txt") + *read_file("out/postLUT.txt");
  };
  for (const char* option :
       {"numsegs=7", "gamma=2", "xytable=.32 .33 .64 .33 .3 .6 .15 .06", "boundary_tol=.02", "lumfrac=.5",
        "rowsum_margin=.3", "minslope=.2", "alpha=.4", "beta=.7", "hwid=.005", "temp=6000", "wptemp=8000"})
    EXPECT_NE(tables(option), tables("")) << option;
  EXPECT_EQ(tables("nbits=8").find('.'), std::string::npos) << "codes";
}

TEST_F(Job, CodesRoundHalvesAwayFromZeroAndAreNotClamped) {
  matrix m = to_matrix({{{{{0.5, -0.5, 0}}, {{1.2, 1, 0.1}}, {{0, 0, 0.49}}}}});
  EXPECT_EQ(table_text("t", m, 5), "    3    6    0\n   -3    5    0\n    0    1    2\n");
  m(1, 0) = 1e19;
  EXPECT_THROW(table_text("t", m, 5), failure) << "more than 64 bits";
  m(1, 0) = std::nan("");
  EXPECT_THROW(table_text("t", m, 0, 2), failure) << "allowed in the last row only";
}

TEST_F(Job, OnlyTheShapeOfToneSamplesCounts) {
  const auto curve = [](const char* text) { return tone_curve(parse_tone_samples("g", text), 5); };
  const lut first = curve("5  0 0  .25 .2  .5 .1  .75 .55  1 1");  // the dent is smoothed
  EXPECT_TRUE(increasing(first.y));
  for (const char* text :
       {"5  0 1.5  64 1.9  128 1.7  192 2.6  256 3.5", "5\n5,1.5 64 1.9\n128\n1.7 192 2.6 256 3.5\n"})
    for (std::size_t i = 0; i < 5; ++i) EXPECT_NEAR(curve(text).y[i], first.y[i], 1e-6) << text;
  const measurements samples = measured({});
  const auto tone = parse_tone_samples("g", "9 0 0 1 1 2 3 3 4 4 9 5 9 6 9 7 12 8 30");
  const correction result = solve({.mode = match_mode::cv2, .tlen = 17, .numsegs = 7}, samples, tone);
  EXPECT_EQ(result.two->ref_smon.table, tone_curve(tone, 7)) << "as many pieces as asked for";
  EXPECT_NE(result.two->ref_smon.table, tone_curve(tone, 5));
  const char* refused[][2] = {{"", "line 1: expected the number of points, found the end"},
                              {"1 0 0", "the number of points is 1, expected at least 2"},
                              {"3 0 0\n1 x\n2 2", "line 2: expected the luminance of point 2, found 'x'"},
                              {"3 0 0 1 nan 2 2", "point 2 is not finite"},
                              {"3 0 0 2 1 2 2", "the drive value of point 3 is 2, expected more than 2"},
                              {"2 -5 0 -1 1", "the drive value of point 2 is -1, expected more than 0"},
                              {"3 0 -1e308 1 2 2 1e308", "gamma.txt: the last luminance less the first is Infinity"},
                              {"3 0 1 1 2 2 1", "nothing to normalise by"}};
  for (const auto& [text, fragment] : refused) {
    std::ofstream("gamma.txt") << text;
    expect_stop("cvmode='CV2' gamfile='gamma.txt'", 5, fragment);
  }
}

TEST_F(Job, MissingGammaFile) {
  const std::string rest = " gamma=1.9 gamfile='none.txt'";
  const std::string said = "\n\n Cannot open gamma file: none.txt\n Using power-law curve with gamma = 1.9\n";
  for (const std::string mode : {"cvmode='CV1'", "cvmode='CV2_1'"}) {
    expect_stop(mode + rest, 5, "none.txt");
    EXPECT_TRUE(run_job(mode + rest, true).out.ends_with(said));
  }
  expect_stop("cvmode='CV2' gamfile='none.txt' gamma=0", 4, "gamma = 0");
  std::ofstream("g.txt") << "2 5 0 9 1";
  const std::string moved = run_job("cvmode='CV2' gamfile='g.txt'", true).out;
  EXPECT_NE(moved.find("\n Setting gamma curve start pixel to 0\n"), moved.npos);
  run_job("cvmode='CV2' gamma=1.9");
  const rows power_law = table("preLUT.txt");
  EXPECT_EQ(run_job("cvmode='CV2'" + rest).out, "");
  EXPECT_EQ(table("preLUT.txt"), power_law);
  EXPECT_NE(run_job("cvmode='CV2'" + rest, true).out.find(said + " comparing"), std::string::npos);
}

TEST_F(Job, FactorsOfTheGrays) {
  const std::string job = "cvmode='CV1' white=.31,.33 tlen=17 grayfile='f.txt'";
  std::ofstream("f.txt") << "3  0 1 1 1  128 1 1 1.1  255 1,1,1\n";
  run_job(job);
  const rows bent = table("postLUT.txt");
  run_job("cvmode='CV1' white=.31,.33 tlen=17");
  const rows plain = table("postLUT.txt");
  EXPECT_EQ(bent.back(), plain.back());
  EXPECT_GT(bent[8][2], plain[8][2] + 0.01) << "a tenth more Z in the middle";
  const std::pair<const char*, const char*> refused[] = {
      {"", "line 1: expected the number of points"},
      {"2 0 1 1 1 1 1 1", "expected the factor of Z of point 2, found the end"},
      {"2 1 1 1 1 2 1 1 1", "the first drive value is 1, not 0"},
      {"3 0 1 1 1 2 1 1 1 2 1 1 1", "the drive value of point 3 is 2, expected more than 2"},
      {"2 0 1 1 1 1 1 nan 1", "a factor of point 2 is NaN, expected 0.1 to 10"},
      {"1 0 1 1 1", "the number of points is 1, expected at least 2"}};
  for (const auto& [text, fragment] : refused) {
    std::ofstream("f.txt") << text;
    expect_stop(job, 5, fragment, {"postLUT.txt"});
  }
  expect_stop("cvmode='CV1' grayfile='none.txt'", 5, "Cannot open grayfile none.txt", {"postLUT.txt"});
  std::ofstream("f.txt") << "2 0 1 1 1 1 1 1 1";
  expect_stop("cvmode='CV1' temp=6000 hwid=.01 grayfile='f.txt'", 4, "hwid = 0.01: cannot be combined with grayfile",
              {"postLUT.txt"});
  EXPECT_EQ(run_job("cvmode='CV2' tlen=17 grayfile='none.txt'").status, 0) << "which has no grays to match";
}

TEST_F(Job, FoldersThatWouldTakeNoTableOrAnInput) {
  const auto folder_of = [](std::size_t n) { return "outdir='" + std::string(n, 'o') + "'"; };
  fs::copy("m.txt", "out/postLUT.txt");
  std::ofstream("out/matrix.txt") << "3 0 0 1 1 2 2";
  const std::tuple<std::string, int, const char*> cases[] = {
      {"outdir=''", 4, "outdir = '': names no folder"},
      {folder_of(245), 4, "too long: the path of a table, postLUT.txt, has more than 256 characters"},
      {folder_of(256), 4, "too long"},
      {folder_of(244), 6, "No such file"},
      {"wgfile='./out/../out/postLUT.txt'", 4, "postLUT.txt would overwrite the measurement file"},
      {"gamfile='out/matrix.txt'", 4, "matrix.txt would overwrite the gamma file"}};
  for (const auto& [option, status, why] : cases)
    expect_stop("cvmode='CV1' " + option, status, why, {"matrix.txt", "postLUT.txt"});
}

// settings_text_test.cpp tests single values. This is about when they are judged, and those that need the monitor.
TEST_F(Job, ValuesThatCannotGiveAResult) {
  for (const std::pair<std::string, const char*> c : {std::pair("CV1' tlen=1", "tlen = 1"),
                                                      {"CV2_1' temp=1", "temp = 1"},
                                                      {"CV1' temp=6500 wptemp=1", "wptemp = 1"},
                                                      {"CV2_1' boundary_tol=.3", "boundary_tol = 0.3"}}) {
    expect_stop("cvmode='" + c.first, 4, c.second);
    expect_stop("cvmode='" + c.first + " wgfile='no.txt'", 0, " Cannot open no.txt");  // that comes first
  }
  for (const char* not_looked_at : {"cvmode='CV1' boundary_tol=.3", "cvmode='CV2' temp=1 wptemp=1"})
    EXPECT_EQ(run_job(not_looked_at).status, 0) << not_looked_at;
}

TEST_F(Job, EndsOfTheShading) {
  const std::string from_the_top = "cvmode='CV1' temp=6500 wptemp=0 beta=1";
  expect_stop(from_the_top + " nbits=8", 8,
              "postLUT.txt is not written: row 17, column 1 is NaN");                // integers have no NaN
  expect_stop("cvmode='CV2_1' temp=6500 wptemp=0 beta=1 nbits=8", 8, "preLUT.txt");  // and no table is written
  ASSERT_EQ(run_job("cvmode='CV1' temp=6500 wptemp=0 beta=.99").status, 0) << "rounds to the last row, too";
  ASSERT_EQ(run_job(from_the_top).status, 0);
  EXPECT_EQ(table("postLUT.txt").size(), 16u) << "numbers up to there";
  EXPECT_TRUE(read_file("out/postLUT.txt")->ends_with("NaN\n"));
}

}  // namespace
}  // namespace corvantile
