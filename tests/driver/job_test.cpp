// Whole small jobs in process, on simulated displays: what they write, what they report, and how they stop.

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <numbers>
#include <sstream>
#include <unistd.h>

#include "colour/nonpar_monitor.hpp"
#include "driver/report.hpp"
#include "driver/run.hpp"
#include "matching/matching.hpp"
#include "tools/simulated_display.hpp"
#include "utils/text.hpp"

namespace corvantile {
namespace {

namespace fs = std::filesystem;

using rows = std::vector<std::vector<double>>;

rows numbers_in(std::istream& in) {
  rows t;
  for (std::string line; std::getline(in, line);) {
    std::istringstream words(line);
    t.emplace_back();
    for (std::string w; words >> w;) t.back().push_back(parse_real(w).value_or(HUGE_VAL));
  }
  return t;
}

// A folder with the measurements of one display, in which jobs run one after the other.
class Job : public testing::Test {
 protected:
  struct outcome {
    int status = 0;
    std::string message;  // of a run that was stopped
    std::string out, err;
  };

  Job() : folder_(fs::temp_directory_path() / ("corvantile-job-" + std::to_string(::getpid()))) {
    display_.white_luminance = 100;
    display_.gamma = {{2.1, 2.2, 2.3}};
    measure(display_);
  }
  ~Job() override { fs::remove_all(folder_); }
  Job(const Job&) = delete;
  Job& operator=(const Job&) = delete;

  std::string path(const std::string& name) const { return (folder_ / name).string(); }
  void put(const std::string& name, std::string_view text) const { std::ofstream(path(name)) << text; }
  void measure(const simulated_display& d) {
    fs::remove_all(folder_);
    fs::create_directories(folder_);
    put("m.txt", measurement_file(d));
    display_ = d;
  }

  outcome run_job(const std::string& options, bool verbose = false) const {
    const std::string profile =
        "&opts tlen=17 wgfile='" + path("m.txt") + "' outdir='" + folder_.string() + "' " + options + " /";
    const std::vector<std::string_view> arguments(verbose ? 1 : 0, "-v");
    std::ostringstream out, err;
    outcome o;
    try {
      run_program(arguments, profile, out, err);
    } catch (const stop_run& stop) {
      o.status = stop.status;
      o.message = stop.message;
    }
    o.out = out.str();
    o.err = err.str();
    return o;
  }
  void expect_stop(const std::string& options, int status, const std::string& fragment) const {
    SCOPED_TRACE(options + ": " + fragment);
    const std::string before = files();
    const outcome o = run_job(options);
    EXPECT_EQ(o.status, status) << o.message;
    EXPECT_NE(o.message.find(fragment), std::string::npos) << o.message;
    EXPECT_EQ(files(), before);
  }

  rows table(const std::string& name) const {
    std::ifstream in(path(name));
    return numbers_in(in);
  }
  // All but the measurements, by name.
  std::string files() const {
    std::vector<std::string> names;
    for (const auto& f : fs::directory_iterator(folder_)) names.push_back(f.path().filename());
    std::ranges::sort(names);
    std::string all;
    for (const auto& n : names)
      if (n != "m.txt") all += n + " ";
    return std::string(trim(all));
  }
  void clear() const {
    for (const char* name : {"preLUT.txt", "matrix.txt", "postLUT.txt"}) fs::remove_all(path(name));
  }

  // Column of numbers below a title of the report.
  static std::vector<double> column(const std::string& out, const std::string& title) {
    std::istringstream in(out.substr(out.find("\n " + title + "\n") + title.size() + 3));
    std::vector<double> c;
    for (const auto& line : numbers_in(in)) {
      if (line.size() != 1) break;
      c.push_back(line[0]);
    }
    return c;
  }

  // The tables of one mode, applied as a user would.
  class tables_in_use {
   public:
    tables_in_use(const Job& job, bool two_tables) : post_(job.table("postLUT.txt")) {
      if (!two_tables) return;
      pre_ = job.table("preLUT.txt");
      matrix_ = job.table("matrix.txt");
    }
    // Drive values for a gray level, by its row in the first table.
    vec3 drive(std::size_t row) const {
      if (pre_.empty()) return {{post_[row][0], post_[row][1], post_[row][2]}};
      vec3 d;
      for (std::size_t c = 0; c < 3; ++c) {
        double x = 0;
        for (std::size_t k = 0; k < 3; ++k) x += matrix_[c][k] * pre_[row][k];
        const double p = x * static_cast<double>(post_.size() - 1);
        const auto i = std::min(static_cast<std::size_t>(std::max(p, 0.0)), post_.size() - 2);
        d[c] = post_[i][c] + (p - static_cast<double>(i)) * (post_[i + 1][c] - post_[i][c]);
      }
      return d;
    }

   private:
    rows pre_, matrix_, post_;
  };

  simulated_display display_;

 private:
  fs::path folder_;
};

TEST_F(Job, EachModeWritesItsFilesInOrder) {
  put("keep.txt", "");
  const struct {
    const char* mode;
    const char* blocked;  // by a directory in its place
    const char* written;  // until then
  } cases[] = {{"CV1", "", "keep.txt postLUT.txt"},
               {"cv2", "", "keep.txt matrix.txt postLUT.txt preLUT.txt"},
               {"cv2_1", "", "keep.txt matrix.txt postLUT.txt preLUT.txt"},
               {"CV2", "preLUT.txt", "keep.txt preLUT.txt"},
               {"CV2", "postLUT.txt", "keep.txt postLUT.txt preLUT.txt"},
               {"CV2", "matrix.txt", "keep.txt matrix.txt postLUT.txt preLUT.txt"},
               {"CV2_1", "postLUT.txt", "keep.txt postLUT.txt"},
               {"CV2_1", "matrix.txt", "keep.txt matrix.txt postLUT.txt"},
               {"CV2_1", "preLUT.txt", "keep.txt matrix.txt postLUT.txt preLUT.txt"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.mode) + " without " + c.blocked);
    clear();
    if (*c.blocked != '\0') fs::create_directory(path(c.blocked));
    const outcome o = run_job(std::string("cvmode='") + c.mode + "'");
    EXPECT_EQ(o.status, *c.blocked != '\0' ? 6 : 0);
    EXPECT_NE(o.message.find(c.blocked), std::string::npos) << o.message;
    EXPECT_EQ(files(), c.written);
    EXPECT_EQ(o.out, "");
    EXPECT_EQ(o.err, o.status == 0 ? " normal exit\n" : "");
  }
}

TEST_F(Job, Cv1LeavesTheOtherTablesAlone) {
  put("preLUT.txt", "old\n");
  put("matrix.txt", "old\n");
  EXPECT_EQ(run_job("cvmode='CV1'").status, 0);
  for (const char* name : {"preLUT.txt", "matrix.txt"}) {
    EXPECT_EQ(read_file(path(name)), "old\n");
  }
}

// What the report says is what the written files do to the modelled display; and that is the wanted thing.
TEST_F(Job, ReportTellsWhatTheTablesDo) {
  const simulated_display plain = display_;
  simulated_display no_red_z = plain;  // as wide-gamut panels are: no ratio can be formed for that Z
  no_red_z.red = {{0.70, 0.30}};
  no_red_z.green = {{0.19, 0.75}};
  no_red_z.dark_red_z = true;
  const double none = -1;
  const struct {
    const char* options;
    const simulated_display* panel;
    double cct;  // kelvin, at the bright half of the ramp, as the CCT formula is published to read
    std::size_t report_lines;
  } cases[] = {{"cvmode='CV1'", &plain, none, 3},
               {"cvmode='CV1' temp=5000 gamma=1.8", &plain, 5009.6470, 3},
               {"cvmode='CV1' temp=9300 tlen=64", &plain, 9287.0084, 3},
               {"cvmode='CV1' temp=6504", &no_red_z, 6502.3051, 3},
               {"cvmode='CV2' tlen=1024", &plain, none, 2 * 1408 + 2},
               {"cvmode='CV2_1' temp=6504", &plain, 6502.3051, 2 * 1408 + 2 + 3},
               {"cvmode='CV2_1' temp=6504", &no_red_z, 6502.3051, 2 * 1408 + 2 + 3}};
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.options) + (c.panel->dark_red_z ? ", red without Z" : ""));
    measure(*c.panel);
    const settings set = read_settings("&opts tlen=17 " + std::string(c.options) + " /");
    const auto tlen = static_cast<std::size_t>(set.tlen);
    const outcome o = run_job(c.options, true);
    ASSERT_EQ(o.status, 0) << o.message;
    const std::size_t settings_lines = 1 + 20;  // the banner and the echo
    EXPECT_EQ(std::ranges::count(o.out, '\n'), settings_lines + c.report_lines + 2 * (tlen + 2));
    const std::vector<double> cct = column(o.out, "CCT"), Y = column(o.out, "output luminance");
    ASSERT_EQ(cct.size(), tlen);
    ASSERT_EQ(Y.size(), tlen);

    const monitor mon = loadmonitor(path("m.txt"), set.numsegs);
    const tables_in_use tables(*this, set.cvmode != "CV1");
    for (std::size_t i = 0; i < tlen; ++i) {
      SCOPED_TRACE(i);
      const double s = static_cast<double>(i) / static_cast<double>(tlen - 1);
      const double dark = s < set.alpha ? (std::cos(std::numbers::pi * s / set.alpha) + 1) / 2 : 0;
      const double wanted = std::pow(s, set.gamma) * Y.back() + dark * mon.darklight[1];
      if (set.cvmode != "CV2") {
        EXPECT_NEAR(Y[i], wanted, 2e-6 * Y.back());
      }
      EXPECT_NEAR(Y[i], inp2out_vec(mon, tables.drive(i))[1], 1e-11 * Y.back());
      if (c.cct > 0 && s >= 0.5) {
        EXPECT_NEAR(cct[i], c.cct, i + 1 == tlen ? 0.1 : 1e-3);
      }
    }
  }
}

TEST_F(Job, CorrectedDisplayLooksLikeItsTarget) {
  const outcome o = run_job("cvmode='CV2' tlen=4096", true);
  ASSERT_EQ(o.status, 0) << o.message;
  std::size_t from = o.out.find(" comparing frontend on " + path("m.txt") + " to modified target\n");
  for (const char* ramp : {"gray", "red", "green", "blue", "yellow", "magenta", "cyan"}) {
    SCOPED_TRACE(ramp);
    const std::string title = std::string("\n ") + ramp + " ramp errmax = ";
    from = o.out.find(title, from);
    ASSERT_NE(from, std::string::npos);
    std::istringstream in(o.out.substr(from + title.size()));
    double errmax = 0, largest = 0;
    in >> errmax;
    EXPECT_LT(errmax, 0.07);  // as measured; a table of twice the length leaves a third of it
    for (int i = 0; i < 200; ++i) {
      double d = HUGE_VAL;
      in >> d;
      largest = std::max(largest, d);
    }
    EXPECT_EQ(errmax, largest);
  }
}

TEST_F(Job, FoldedTableIsTheFirstTableAtTheGrayMatch) {
  ASSERT_EQ(run_job("cvmode='CV2'").status, 0);
  const rows pre = table("preLUT.txt");
  ASSERT_EQ(run_job("cvmode='CV2_1' temp=6500").status, 0);
  const rows folded = table("preLUT.txt");

  settings set;
  fill_xytable(set, std::cout);
  const auto& [white, red, green, blue] = set.xytable;
  const gspec spec{.lut = make_gamma_table(2.2, 17)};
  const auto solution = twolutsolution(loadmonitor(path("m.txt"), 5), {red, green, blue, white}, spec, 17);
  matrix rlut(17, 3);
  ASSERT_EQ(cv1(solution.cmon, {.temp = 6500}, spec.lut, rlut), 0);
  for (std::size_t c = 0; c < 3; ++c) {
    lut t{linspace(0, 1, 17), {}};
    for (const auto& row : pre) t.y.push_back(row[c]);
    for (std::size_t i = 0; i < 17; ++i) EXPECT_NEAR(folded[i][c], interp(t, rlut(i, c)), 1e-11);
  }
}

TEST_F(Job, IntegerTablesAreTheRoundedReals) {
  for (const char* mode : {"CV1", "CV2", "CV2_1"}) {
    const std::string job = std::string("cvmode='") + mode + "'";
    clear();
    ASSERT_EQ(run_job(job).status, 0);
    std::map<std::string, rows> reals;
    for (const char* name : {"preLUT.txt", "matrix.txt", "postLUT.txt"}) reals[name] = table(name);
    for (const int nbits : {1, 8, 10, 31}) {
      SCOPED_TRACE(job + std::to_string(nbits));
      ASSERT_EQ(run_job(job + " nbits=" + std::to_string(nbits)).status, 0);
      const double maxcode = std::pow(2.0, nbits) - 1;
      // The reals have 12 decimals, which is half a code in 2^31 now and then.
      const double slack = nbits == 31 ? 1 : 0;
      for (auto& [name, r] : reals) {
        const rows codes = table(name);
        ASSERT_EQ(codes.size(), r.size());
        for (std::size_t i = 0; i < r.size(); ++i)
          for (std::size_t c = 0; c < 3; ++c) EXPECT_NEAR(codes[i][c], std::round(r[i][c] * maxcode), slack);
      }
    }
  }
}

TEST_F(Job, CodesRoundHalvesAwayFromZeroAndAreNotClamped) {
  const mat3 m{{{{{0.5, -0.5, 0}}, {{1.002, 1, 0.1}}, {{0, 0, 0.49}}}}};
  write_table(path(""), "matrix.txt", m, {8, 255});
  EXPECT_EQ(read_file(path("matrix.txt")), "    128    256      0\n   -128    255      0\n      0     26    125\n");
}

TEST_F(Job, ScaleAndStartOfTheGammaFileDoNotMatter) {
  std::map<std::string, std::string> tables;
  const struct {
    const char* text;
    bool moved;
    const char* why;
  } cases[] = {{"5  0 0  .25 .05  .5 .2  .75 .55  1 1", false, "normalised already"},
               {"5  0 1.5  64 1.6  128 1.9  192 2.6  256 3.5", false, "other units, and light at the start"},
               {"5\n5,1.5 64 1.6\n128\n1.9 192 2.6 256 3.5\n", true, "the first drive value counts as 0"}};
  for (const char* mode : {"CV1", "CV2", "CV2_1"}) {
    for (const auto& c : cases) {
      SCOPED_TRACE(std::string(mode) + ": " + c.why);
      put("gamma.txt", c.text);
      const outcome o = run_job("gamfile='" + path("gamma.txt") + "' cvmode='" + mode + "'", true);
      ASSERT_EQ(o.status, 0) << o.message;
      EXPECT_EQ(o.out.find("\n Setting gamma curve start pixel to 0\n") != std::string::npos, c.moved);
      const rows t = table(mode == std::string("CV2") ? "preLUT.txt" : "postLUT.txt");
      static rows first;
      if (c.text == cases[0].text) first = t;
      ASSERT_EQ(t.size(), first.size());
      for (std::size_t i = 0; i < t.size(); ++i) EXPECT_NEAR(t[i][1], first[i][1], 1e-6);
    }
  }
}

TEST_F(Job, MissingGammaFile) {
  const std::string name = path("none.txt");
  const std::string lines = " Cannot open gamma file: " + name + "\n Using power-law curve with gamma = 2.2\n";
  const std::string gamfile = " gamfile='" + name + "'";
  for (const char* mode : {"CV1", "CV2_1"}) {
    const outcome o = run_job(std::string("cvmode='") + mode + "'" + gamfile, true);
    EXPECT_EQ(o.status, 5);
    EXPECT_NE(o.message.find(name), std::string::npos) << o.message;
    EXPECT_TRUE(o.out.ends_with("\n\n" + lines));
    EXPECT_EQ(files(), "");
  }

  ASSERT_EQ(run_job("cvmode='CV2'").status, 0);
  const auto power_law = read_file(path("preLUT.txt"));
  const outcome o = run_job("cvmode='CV2'" + gamfile, true);
  EXPECT_EQ(o.status, 0);
  EXPECT_NE(o.out.find(lines + " comparing"), std::string::npos);
  EXPECT_EQ(read_file(path("preLUT.txt")), power_law);
  EXPECT_EQ(o.out.find("NaN"), std::string::npos);
  EXPECT_EQ(run_job("cvmode='CV2'" + gamfile).out, "");
}

TEST_F(Job, GammaFilesThatGiveNoCurve) {
  const struct {
    const char* text;
    const char* fragment;
  } cases[] = {{"", "line 1: expected the number of points, found the end"},
               {"n 0 0 1 1", "line 1: expected the number of points, found 'n'"},
               {"2.5 0 0 1 1", "found '2.5'"},
               {"1 0 0", "number of points is 1"},
               {"-2 0 0 1 1", "number of points is -2"},
               {"2000000000 0 0", "2000000000 points are more than the file can hold"},
               {"3 0 0\n1 1\n", "the drive value of point 3, found the end"},
               {"3 0 0\n1 x\n2 2", "line 2: expected the luminance of point 2, found 'x'"},
               {"3 0 0 1 nan 2 2", "point 2 is not finite"},
               {"3 0 0 2 1 1 2", "the drive value of point 3 is 1, expected more than 2"},
               {"2 5 0 -1 1", "the drive value of point 2 is -1, expected more than 0"},
               {"3 0 1 1 2 2 1", "nothing to normalise by"}};
  for (const auto& c : cases) {
    put("gamma.txt", c.text);
    expect_stop("cvmode='CV1' gamfile='" + path("gamma.txt") + "'", 5, c.fragment);
    expect_stop("cvmode='CV2' gamfile='" + path("gamma.txt") + "'", 5, "gamma.txt: ");
  }
}

// The single values are the settings' own test; here, when they are judged and what needs the monitor for it.
TEST_F(Job, ValuesThatCannotGiveAResult) {
  const struct {
    const char* modes;  // 1: CV1, 2: CV2, 3: CV2_1; the others do not look at the value
    const char* options;
    const char* fragment;
  } cases[] = {{"123", "tlen=1", "tlen = 1"},
               {"13", "temp=0", "temp = 0"},
               {"13", "temp=1", "temp = 1"},
               {"13", "temp=6500 wptemp=1", "wptemp = 1"},
               {"", "wptemp=nan beta=inf hwid=nan", ""},
               {"23", "lumfrac=0", "lumfrac = 0"},
               {"23", "boundary_tol=.3", "boundary_tol = 0.3"},
               {"23", "xytable=.7,.2,.64,.33,.3,.6,.15,.06", "inside the triangle"}};
  const char* names[] = {"CV1", "CV2", "CV2_1"};
  for (const auto& c : cases) {
    for (const char mode : {'1', '2', '3'}) {
      const std::string options = std::string("cvmode='") + names[mode - '1'] + "' " + c.options;
      clear();
      if (std::string_view(c.modes).find(mode) != std::string_view::npos) {
        expect_stop(options, 4, c.fragment);
        // Only once the measurements are there.
        expect_stop(options + " wgfile='nowhere.txt'", 0, " Cannot open nowhere.txt");
      } else {
        EXPECT_EQ(run_job(options).status, 0) << options;
      }
    }
  }
}

TEST_F(Job, MeasurementsThatCannotGiveAResult) {
  const struct {
    const char* text;
    int status;
    const char* fragment;
  } cases[] = {{"17 0 3\n", 0, "improper version number"},
               {"17 0 2\n255 255", 5, "more than the file can hold"},
               {"2 0 2\n48*1", 5, "no brighter than the dark"},
               {"2 0 2\n1 1 1 nan 1 1 42*0", 5, "X is NaN"}};
  for (const auto& c : cases) {
    put("m.txt", c.text + std::string(60, ' '));  // room for 8 samples written in full
    for (const char* mode : {"cvmode='CV1'", "cvmode='CV2'"}) expect_stop(mode, c.status, c.fragment);
  }
}

TEST_F(Job, ShadingFromTheVeryTopIsNotANumberThere) {
  const std::string job = "cvmode='CV1' temp=6500 wptemp=0 beta=1";
  ASSERT_EQ(run_job(job).status, 0);
  const rows t = table("postLUT.txt");
  for (std::size_t i = 0; i < t.size(); ++i)
    for (std::size_t c = 0; c < 3; ++c) EXPECT_EQ(std::isnan(t[i][c]), i + 1 == t.size());

  // No code stands for it.
  const auto reals = read_file(path("postLUT.txt"));
  const outcome o = run_job(job + " nbits=8");
  EXPECT_EQ(o.status, 8);
  EXPECT_NE(o.message.find("postLUT.txt is not written: row 17, column 1 is NaN"), std::string::npos) << o.message;
  EXPECT_EQ(read_file(path("postLUT.txt")), reals);
}

TEST_F(Job, AlphaAndBetaOutOfOrderLeaveZeros) {
  for (const char* order : {"alpha=.8", "alpha=.9 beta=.8", "beta=1.5"}) {
    EXPECT_EQ(run_job(std::string("cvmode='CV1' temp=6500 ") + order).status, 0);
    EXPECT_EQ(table("postLUT.txt"), rows(17, {0, 0, 0})) << order;
  }
}

}  // namespace
}  // namespace corvantile
