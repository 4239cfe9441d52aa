#include "corvantile/report/gather.hpp"

#include <gtest/gtest.h>

#include "corvantile/report/banding.hpp"
#include "corvantile/report/target.hpp"
#include "shown_display.hpp"

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
  const banding_record same = banding(chain(power_table(2, 1)), 8), half = banding(chain(halved), 8);
  EXPECT_EQ(same.steps_lost[0], 0);
  EXPECT_EQ(same.longest_run[2], 1);
  EXPECT_EQ(half.steps_lost[1], 127) << "128 codes, 0 to 128 but one that rounding skips, are left of 256";
  matrix beyond = power_table(4, 1);
  beyond(0, 0) = -0.001;
  beyond(3, 2) = 1.001;
  EXPECT_EQ(clipped("t", beyond, 0).below[0] + 10 * clipped("t", beyond, 0).above[2], 11U);
  EXPECT_EQ(clipped("t", beyond, 8).below[0] + clipped("t", beyond, 8).above[2], 0U) << "less than half a code";
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

TEST(Gather, FindsAGoodCorrectionGoodAndTheDisplayBeforeItBad) {
  const shown_display s = shown_example();
  const report_data d = gather_report(s.source());
  EXPECT_LT(d.verdict.gray_after.max, 0.35) << "what the fit's 12 pieces leave, near black";
  EXPECT_GT(d.verdict.gray_before.mean, 3);
  EXPECT_LT(d.verdict.corners_after.max, 0.05);
  EXPECT_LT(d.verdict.after.distance, 1e-4);
  EXPECT_NEAR(d.verdict.after.cct, 6502, 2) << "D65";
  EXPECT_NEAR(d.trust.additivity, 1, 1e-5);
  EXPECT_EQ(d.trust.unseen.size(), 20U);
  ASSERT_EQ(d.gamut.coverage.size(), 5U);
  EXPECT_NEAR(d.gamut.coverage[0].after, 1, 2e-3);
  double product = 1;
  for (const loss_record& l : d.verdict.losses) product *= l.factor;
  EXPECT_NEAR(product, d.verdict.after.luminance / d.verdict.before.luminance, 2e-3);
  const std::size_t middle = d.gray.asked.drive.size() / 2;
  EXPECT_NEAR(d.gray.asked.gamma[middle], 2.2, 1e-9);
  EXPECT_NEAR(d.gray.before.gamma[middle], 2.6, 0.05);
  EXPECT_NEAR(d.gray.after.balance[2][middle], 100, 0.5);
  EXPECT_LT(d.gray.cct_low, 6502);
  EXPECT_GT(d.gray.cct_high, 6502);
  for (const patch_record& p : d.differences.patches) EXPECT_LT(p.after, 0.35) << p.name;
}

TEST(Gather, TellsWhatWentWrongBehindTheTables) {
  const shown_display s = shown_example();
  const auto chain = [&](const vec3& u) { return corrected(s.tables, u); };
  const struct {
    std::function<vec3(const vec3&)> drive;
    vec3 light;  // what the readings' X, Y, Z are multiplied by
    const char* words;
  } rows[] = {{chain, {{.01, .01, .01}}, "loaded, once"},  // in another unit
              {[](const vec3& u) { return u; }, {{1, 1, 1}}, "had not been loaded"},
              {[&](const vec3& u) { return chain(chain(u)); }, {{1, 1, 1}}, "applied twice"},
              {chain, {{1.1, 1, 0.8}}, "white is another"},
              {[](const vec3& u) {
                 return vec3{{u[0] * u[0], u[1], std::sqrt(u[2])}};
               },
               {{1, 1, 1}},
               "does not do"}};
  for (const auto& r : rows) {
    SCOPED_TRACE(r.words);
    std::vector<reading> readings;
    for (int i = 0; i < 125; ++i) {
      const vec3 u{{i % 5 / 4.0, i / 5 % 5 / 4.0, i / 25 / 4.0}}, xyz = inp2out_vec(s.display, r.drive(u));
      readings.push_back({u, {{r.light[0] * xyz[0], r.light[1] * xyz[1], r.light[2] * xyz[2]}}});
    }
    report_data d = gather_report(s.source());
    gather_measured(d, s.source(), readings);
    EXPECT_NE(d.measured->diagnosis[0].find(r.words), std::string::npos) << d.measured->diagnosis[0];
    EXPECT_EQ(d.gray.measured->drive, (std::vector<double>{0, 0.25, 0.5, 0.75, 1}));
    EXPECT_EQ(d.measured->patches.size(), 125U);
    EXPECT_EQ(d.differences.ramps[6].measured_drive, (std::vector<double>{0.25, 0.5, 0.75, 1})) << "cyan";
  }
}

TEST(Gather, JudgesSolvedJobsByWhatTheyWereAskedFor) {
  const struct {
    settings set;
    double cct, mean;
    std::size_t curves;
    const char* why;
  } rows[] = {
      {{.mode = match_mode::cv1, .tlen = 65, .temp = 6000}, 6000, 0.6, 1, "a blackbody, dark blended in"},
      {{.mode = match_mode::cv2, .tlen = 1024}, 6504, 2, 2, "the white of xytable; bent X and Z stay as they are"},
      {{.mode = match_mode::cv2_1, .tlen = 65, .temp = 6000}, 6000, 0.6, 2, "grays apart from the matrix"},
      {{.mode = match_mode::cv1, .tlen = 65, .temp = 6000, .wptemp = 6000, .beta = 1}, 6000, 0.6, 1, "0/0 on top"}};
  for (const auto& r : rows) {
    SCOPED_TRACE(r.why);
    const correction result = solve(r.set, measured(uneven_display()));
    const report_source source = source_of(result, r.set);
    const report_data d = gather_report(source);
    EXPECT_NEAR(d.verdict.asked.cct, r.cct, 5) << "what the exponential formula is off by";
    EXPECT_EQ(source.dark_below.has_value(), matches_gray(r.set.mode));
    EXPECT_EQ(d.tables.curves.size(), r.curves);
    EXPECT_LT(d.verdict.gray_after.mean, r.mean) << "65 rows are coarse near black";
    EXPECT_GT(d.verdict.gray_before.mean, 1);
    EXPECT_NEAR(d.verdict.after.luminance / d.verdict.before.luminance, 0.9, 0.1);
  }
}

}  // namespace
}  // namespace corvantile
