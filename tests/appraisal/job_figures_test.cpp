#include "corvantile/appraisal/job_figures.hpp"

#include <gtest/gtest.h>

#include "corvantile/appraisal/verification.hpp"
#include "tests/appraisal/shown_display.hpp"

namespace corvantile {
namespace {

TEST(Banding, LosesStepsAndClipsAsTheBitsSay) {
  matrix halved = power_table(256, 1);
  for (double& v : halved.data()) v /= 2;
  const auto chain = [](const matrix& post) {
    device_tables tables;
    tables.post = post;
    return [tables](const vec3& u) { return corrected(tables, u); };
  };
  const banding_figures same = banding(chain(power_table(2, 1)), 8), half = banding(chain(halved), 8);
  EXPECT_EQ(same.steps_lost[0], 0);
  EXPECT_EQ(same.longest_run[2], 1);
  EXPECT_EQ(half.steps_lost[1], 127) << "128 codes, 0 to 128 but one that rounding skips, are left of 256";
  matrix beyond = power_table(4, 1);
  beyond(0, 0) = -0.001;
  beyond(3, 2) = 1.001;
  EXPECT_EQ(clipped_entries(beyond, 0).below[0] + 10 * clipped_entries(beyond, 0).above[2], 11U);
  EXPECT_EQ(clipped_entries(beyond, 8).below[0] + clipped_entries(beyond, 8).above[2], 0U) << "less than half a code";
}

TEST(AskedDisplay, ReachesItsWhiteAndInverts) {
  const vec3 dark{{0.2, 0.2, 0.3}};
  asked_display a = make_asked_display({{{{0.64, 0.33}}, {{0.30, 0.60}}, {{0.15, 0.06}}}}, {{0.3127, 0.3290}}, 120,
                                       dark, [](double s) { return s * s; });
  const vec3 white = asked_xyz(a, {{1, 1, 1}});
  EXPECT_NEAR(white[1], 120, 1e-9);
  EXPECT_NEAR(white[0] / (white[0] + white[1] + white[2]), 0.3127, 1e-12);
  EXPECT_LT(dist2(asked_drive(a, asked_xyz(a, {{0.2, 0.5, 0.9}})), {{0.2, 0.5, 0.9}}), 1e-10);
  a.dark_below = 0.5;
  EXPECT_EQ(asked_xyz(a, {{0, 0, 0}}), dark);
  EXPECT_EQ(asked_xyz(a, {{0.7, 0.7, 0.7}}), 0.7 * 0.7 * a.white) << "no dark above the blend";
}

TEST(JobFigures, FindAGoodCorrectionGoodAndTheDisplayBeforeItBad) {
  const shown_display s = shown_example();
  const job_figures f = figures_of(s.as_subject());
  EXPECT_LT(f.gray.difference_after.max, 0.35) << "what the fit's 12 pieces leave, near black";
  EXPECT_GT(f.gray.difference_before.mean, 3);
  EXPECT_LT(f.corners_after.max, 0.05);
  EXPECT_LT(f.white_after.distance, 1e-4);
  EXPECT_NEAR(f.white_after.cct, 6502, 2) << "D65";
  ASSERT_EQ(f.gamut.coverage.size(), 5U);
  EXPECT_NEAR(f.gamut.coverage[0].after, 1, 2e-3);
  EXPECT_NEAR(f.light.white * f.light.lumfrac * f.light.limit * f.light.rest,
              f.white_after.xyz[1] / f.white_before.xyz[1], 1e-12);
  const std::size_t middle = f.gray.asked.drive.size() / 2;
  EXPECT_NEAR(f.gray.asked.gamma[middle], 2.2, 1e-9);
  EXPECT_NEAR(f.gray.before.gamma[middle], 2.6, 0.05);
  EXPECT_NEAR(f.gray.after.balance[2][middle], 100, 0.5);
  EXPECT_LT(f.gray.cct_low, 6502);
  EXPECT_GT(f.gray.cct_high, 6502);
  for (const patch_figures& p : f.patches) EXPECT_LT(p.after, 0.35) << p.name;
}

TEST(Verification, TellsHowTheTablesWereLoaded) {
  const shown_display s = shown_example();
  const auto chain = [&](const vec3& u) { return corrected(s.tables, u); };
  const struct {
    std::function<vec3(const vec3&)> drive;
    vec3 light;  // factors of the readings' X, Y, Z
    load_state want;
    const char* why;
  } rows[] = {
      {chain, {{.01, .01, .01}}, load_state::once, "in another unit"},
      {[](const vec3& u) { return u; }, {{1, 1, 1}}, load_state::none, "no tables"},
      {[&](const vec3& u) { return chain(chain(u)); }, {{1, 1, 1}}, load_state::twice, "by profile and device"},
      {chain, {{1.1, 1, 0.8}}, load_state::another_white, "a colour control"},
      {[](const vec3& u) {
         return vec3{{u[0] * u[0], u[1], std::sqrt(u[2])}};
       },
       {{1, 1, 1}},
       load_state::unclear,
       "something else"}};
  for (const auto& r : rows) {
    SCOPED_TRACE(r.why);
    readings after;
    for (int i = 0; i < 125; ++i) {
      const vec3 u{{i % 5 / 4.0, i / 5 % 5 / 4.0, i / 25 / 4.0}}, xyz = inp2out_vec(s.display, r.drive(u));
      after.rows.push_back({u, {{r.light[0] * xyz[0], r.light[1] * xyz[1], r.light[2] * xyz[2]}}});
    }
    const verification v = verify(s.as_subject(), after);
    EXPECT_EQ(v.loaded, r.want);
    EXPECT_EQ(v.gray.drive, (std::vector<double>{0, 0.25, 0.5, 0.75, 1}));
    EXPECT_EQ(v.patches.size(), 125U);
    EXPECT_EQ(v.ramps[6].drive, (std::vector<double>{0.25, 0.5, 0.75, 1})) << "cyan";
  }
}

TEST(JobFigures, JudgeSolvedJobsByWhatTheyWereAskedFor) {
  const struct {
    settings set;
    double cct, mean;
    const char* why;
  } rows[] = {
      {{.mode = match_mode::cv1, .tlen = 65, .temp = 6000}, 6000, 0.6, "a blackbody, dark blended in"},
      {{.mode = match_mode::cv2, .tlen = 1024}, 6504, 2, "the white of xytable; bent X and Z stay as they are"},
      {{.mode = match_mode::cv2_1, .tlen = 65, .temp = 6000}, 6000, 0.6, "grays apart from the matrix"},
      {{.mode = match_mode::cv1, .tlen = 65, .temp = 6000, .wptemp = 6000, .beta = 1}, 6000, 0.6, "0/0 on top"}};
  for (const auto& r : rows) {
    SCOPED_TRACE(r.why);
    const correction result = solve(r.set, measured(uneven_display()));
    const job_figures f = figures_of(result, r.set);
    EXPECT_NEAR(xyz2cct(f.white_asked), r.cct, 5) << "what the exponential formula is off by";
    EXPECT_EQ(subject_of(result, r.set).dark_below.has_value(), matches_gray(r.set.mode));
    EXPECT_EQ(f.clipped.size(), solves_two_tables(r.set.mode) ? 2U : 1U);
    EXPECT_LT(f.gray.difference_after.mean, r.mean) << "65 rows are coarse near black";
    EXPECT_GT(f.gray.difference_before.mean, 1);
    EXPECT_NEAR(f.white_after.xyz[1] / f.white_before.xyz[1], 0.9, 0.1);
  }
}

}  // namespace
}  // namespace corvantile
