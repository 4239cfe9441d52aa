#include "corvantile/residual/residual_model.hpp"

#include <gtest/gtest.h>
#include <limits>
#include <random>

#include "corvantile/colour/color_metrics.hpp"
#include "corvantile/residual/prepared_residual_model.hpp"
#include "corvantile/residual/uniform_colour.hpp"
#include "corvantile/utils/failure.hpp"
#include "tests/residual/displays.hpp"

namespace corvantile {
namespace {

// Mean CIEDE2000 over drives that no chart holds.
double mean_error(const simulated_display& d, const residual_model& model) {
  const vec3& white = model.base.whitepoint;
  std::vector<double> errors;
  for (const vec3& u : scattered(700)) {
    errors.push_back(deltae2000_vec(xyz2lab_vec(shown(d, u), white), xyz2lab_vec(predict(model, u), white)));
  }
  errors.erase(errors.begin(), errors.begin() + 200);
  return summarize(errors).mean;
}

TEST(ResidualModel, LearnsWhatDoesNotAddUpAndTellsHowWell) {
  simulated_display limited = uneven_display(), dynamic = uneven_display();
  limited.power_limit = 0.3;
  dynamic.dynamic_backlight = 0.2;
  const std::pair<simulated_display, const char*> rows[] = {
      {crosstalk_display(0.1), "crosstalk"}, {limited, "power limit"}, {dynamic, "dynamic backlight"}};
  for (const auto& [d, why] : rows) {
    SCOPED_TRACE(why);
    const residual_model model = learnt(d);
    EXPECT_TRUE(model.used);
    EXPECT_EQ(model.beside, 175u);
    const double additive = mean_error(d, additive_only(model.base)), with = mean_error(d, model);
    EXPECT_LT(with, additive / 4);
    EXPECT_NEAR(model.figures.additive.all.mean, additive, 0.3 * additive);
    EXPECT_NEAR(model.figures.left_out.all.mean, with, 0.6 * with);
    EXPECT_GT(model.figures.left_out.near_gray.n, 40u);
  }
}

TEST(ResidualModel, IsLeftOutWhereItDoesNotHelp) {
  const monitor base = fitted(uneven_display());
  std::vector<reading> all = chart_of(uneven_display(), 60);
  std::mt19937 random(1);
  for (reading& r : all) r.xyz = (random() % 2 == 0 ? 1.02 : 0.98) * r.xyz;  // noise alone
  const residual_model model = learn_residual(base, all);
  EXPECT_FALSE(model.used);
  EXPECT_GE(model.figures.left_out.all.mean, model.figures.additive.all.mean);
  EXPECT_EQ(predict(model, vec3{{0.2, 0.5, 0.3}}), inp2out_vec(base, {{0.2, 0.5, 0.3}}));
}

TEST(ResidualModel, TakesReadingsInAnyOrderAndRepeatsAsOne) {
  const simulated_display d = crosstalk_display(0.1);
  std::vector<reading> all = chart_of(d, 40);
  const vec3 drive{{0.2, 0.4, 0.6}}, apart{{4e-5, -4e-5, 0}}, xyz = shown(d, drive);
  all.push_back({drive, xyz, 200});
  const residual_model model = learn_residual(fitted(d), all, 1);
  std::ranges::reverse(all);
  EXPECT_EQ(learn_residual(fitted(d), all, 3).residual.weight, model.residual.weight);
  all.push_back({drive + apart, 1.01 * xyz, 201});
  all.push_back({drive - apart, 0.99 * xyz, 202});
  const residual_model again = learn_residual(fitted(d), all);
  EXPECT_EQ(again.patches, model.patches);
  EXPECT_LT(dist2(predict(again, drive), predict(model, drive)), 1e-16 * dist2(xyz, {}));
  EXPECT_EQ(predict(model, vec3{{-1, 0.5, 2}}), predict(model, vec3{{0, 0.5, 1}})) << "drives are clipped";
}

TEST(ResidualModel, RefusesWhatNothingCanBeLearntFrom) {
  const simulated_display d = crosstalk_display(0.1);
  const auto spoilt = [&](auto change) {
    std::vector<reading> all = chart_of(d, 40);
    change(all);
    return all;
  };
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const std::pair<std::vector<reading>, const char*> rows[] = {
      {chart_of(d, 24), "24 patches beside the ramps, expected at least 25"},
      {spoilt([](auto& all) { all.clear(); }), "0 patches beside the ramps"},
      {spoilt([](auto& all) {
         for (std::size_t i = 68; i < all.size(); ++i)
           all[i].drive = 0.013 * static_cast<double>(i - 60) * vec3{{1, 0.5, 0}};
       }),
       "on one line"},
      {spoilt([](auto& all) {
         all.push_back({all.back().drive, 1.5 * all.back().xyz, 110});
       }),
       "of 2 readings of its patch"},
      {spoilt([](auto& all) { all[99].xyz = {}; }), "line 100: reading without light"},
      {spoilt([](auto& all) { all[99].xyz[2] = -1; }), "line 100: X, Y or Z is below 0"},
      {spoilt([&](auto& all) { all[99].xyz[1] = nan; }), "line 100: drive and X, Y, Z must be finite"},
      {spoilt([&](auto& all) { all[99].drive[1] = nan; }), "line 100: drive and X, Y, Z must be finite"}};
  for (const auto& [all, fragment] : rows) {
    try {
      learn_residual(fitted(d), all);
      ADD_FAILURE() << fragment;
    } catch (const failure& f) {
      EXPECT_EQ(f.kind, fault::content);
      EXPECT_NE(f.message.find(fragment), std::string::npos) << f.message;
    }
  }
  EXPECT_THROW(learn_residual(composite, chart_of(d, 40)), failure);
  std::vector<reading> dark = chart_of(d, 40);
  dark[16].xyz = {};
  EXPECT_TRUE(learn_residual(fitted(d), dark).used) << "black may be without light";
}

TEST(PreparedResidualModel, ShowsWhatTheModelDoesAndKnowsItsSlopes) {
  const residual_model model = learnt(crosstalk_display(0.2));
  std::vector<vec3> drives = scattered(300);
  for (std::size_t i = 0; i < drives.size(); i += 3) drives[i] = 0.1 * drives[i];
  for (std::size_t i = 1; i < drives.size(); i += 3) drives[i] = drives[i][0] * vec3{{1, 1, 1}};
  for (const vec3& corner : {vec3{}, vec3{{1, 1, 1}}, vec3{{1, 0, 1}}}) drives.push_back(corner);
  const vec3& white = model.base.whitepoint;
  for (const residual_model& m : {model, additive_only(model.base)}) {
    const prepared_residual_model one(m, 1), many(m, 4);
    for (const vec3& u : drives) {
      const values_and_slopes is = one.lab(u);
      EXPECT_EQ(is.value, many.lab(u).value);
      EXPECT_LT(std::sqrt(dist2(is.value, xyz2lab_exact(predict(m, u), white))), 1e-3);
      EXPECT_LT(dist2(one.xyz(u), lab2xyz_exact(is.value, white)), 1e-20);
      for (std::size_t c = 0; c < 3; ++c) {
        vec3 next = u;
        const double step = u[c] < 0.5 ? 1e-6 : -1e-6;
        next[c] += step;
        const vec3 quotient = (one.lab(next).value - is.value) / step;
        EXPECT_LT(std::sqrt(dist2(quotient, is.slopes.col[c])), 0.02) << "of up to 300";
      }
    }
  }
}

}  // namespace
}  // namespace corvantile
