#include "corvantile/readings/ramps.hpp"

#include <gtest/gtest.h>

#include "corvantile/readings/derived_ramps.hpp"
#include "corvantile/utils/failure.hpp"
#include "tests/readings/charts.hpp"

namespace corvantile {
namespace {

const simulated_display uneven{.gamma = {{2.1, 2.2, 2.4}}, .toe = 0.02};

TEST(DerivedRamps, OfAnAdditiveDisplayAreItsTrueRamps) {
  readings all = chart(additive(uneven), 17);
  std::ranges::reverse(all.rows);  // the order of measuring is free
  const ramp_choice c = ramps(all, ramp_source::derived);
  EXPECT_EQ(c.repaired, 0u);
  EXPECT_TRUE(has_derived_ramps(c.data));
  ASSERT_EQ(c.data.nramp, 17);
  for (std::size_t row = 0; row < 4 * 17; ++row) {
    const vec3 drive = row3(c.data.data, row) / 100;
    const vec3 xyz{{c.data.data(row, 3), c.data.data(row, 4), c.data.data(row, 5)}};
    EXPECT_LT(dist2(xyz, shown(uneven, drive)), 1e-18) << row;
    EXPECT_EQ(drive == vec3{}, row % 17 == 16) << row;
  }
  EXPECT_EQ(c.data.data.rows(), 4 * 17u + 3 * 15u) << "the measured channels follow, but for the full primaries";
}

TEST(DerivedRamps, RiseWhereNoiseMakesThemFall) {
  const mat3 p{{vec3{{1, 0, 0}}, vec3{{0, 1, 0}}, vec3{{0, 0, 1}}}};
  const std::vector<vec3> gray{
      {{-0.1, 0.1, 0.1}}, {{0.4, 0.2, 0.2}}, {{0.2, 0.4, 0.4}}, {{0.3, 0.6, 0.9}}, {{0.9, 0.9, 0.8}}};
  const derived_ramps r = derive_ramps(gray, {}, p);
  EXPECT_EQ(r.repaired, 3u);
  const vec3 want[] = {
      {{0.05, 0.1, 0.1}}, {{0.1, 0.2, 0.2}}, {{0.2, 0.4, 0.4}}, {{0.3, 0.6, 0.56}}, {{0.9, 0.9, 0.8}}};
  for (std::size_t i = 0; i < 5; ++i) EXPECT_LT(dist2(row3(r.share, i), want[i]), 1e-24) << i;
}

TEST(Ramps, KeepLevelsApartAverageRepeatsAndDropFailures) {
  const screen show = additive(uneven);
  readings all = chart(show, 9, 3);
  const vec3 white = show({{1, 1, 1}});
  read(all, show, {{0.5003, 0.5003, 0.5003}});     // a level of its own
  read(all, show, {{0.75005, 0.75005, 0.75005}});  // the same as 0.75
  for (const double y : {0.98, 0.96}) all.rows.push_back({{{1, 1, 1}}, y * white, 90});
  all.rows.push_back({{{1, 1, 1}}, {}, 91});
  all.rows.push_back({{{0.3, 0.3, 0.3}}, 0.9 * white, 92});
  all.rows.push_back({{{0.3, 0.3, 0.9}}, {}, 93});
  const ramp_choice c = ramps(all, ramp_source::measured);
  EXPECT_EQ(c.data.nramp, 9);
  EXPECT_EQ(c.gray_levels, 10u);
  EXPECT_NEAR(c.data.data(0, 4), 0.98 * white[1], 1e-9);
  EXPECT_EQ(c.data.data.rows(), 4 * 9u + 3 + 1) << "mixtures and the lone gray";
  EXPECT_EQ(c.repeated.white->n, 3u);
  EXPECT_NEAR(c.repeated.white->spread, 0.04 / 0.98, 1e-9);
  EXPECT_LT(c.repeated.drift->change, -0.03);
  ASSERT_EQ(c.notes.kept().size(), 3u);
  for (std::size_t i = 0; i < 3; ++i) {
    const std::size_t line[] = {93, 91, 92};
    EXPECT_EQ(c.notes.kept()[i].line, line[i]);
    EXPECT_TRUE(c.notes.kept()[i].dropped);
  }
}

TEST(Ramps, AutomaticTakesWhatPredictsUnseenPatchesBetter) {
  simulated_display bent = uneven;
  bent.nX = bent.nZ = {{0.2, -0.2, 0.2}};  // channels whose colour wanders: a gray ramp cannot tell
  const struct {
    screen show;
    int levels, mixtures;
    ramp_source want;
    const char* why;
  } rows[] = {{additive(bent), 17, 20, ramp_source::measured, "CIEDE2000"},
              {not_additive(bent, 0.2), 17, 20, ramp_source::derived, "CIEDE2000"},
              {additive(bent), 17, 9, ramp_source::measured, "within 1 %"},
              {not_additive(uneven, 0.005), 17, 0, ramp_source::measured, "within 1 %"},
              {not_additive(uneven, 0.02), 17, 0, ramp_source::derived, "-2.0 %"},
              {additive(uneven), 8, 0, ramp_source::derived, "share only 8 levels"}};
  for (const auto& r : rows) {
    SCOPED_TRACE(r.why);
    const ramp_choice c = ramps(chart(r.show, r.levels, r.mixtures), ramp_source::automatic);
    EXPECT_EQ(c.taken, r.want);
    EXPECT_NE(c.why.find(r.why), std::string::npos) << c.why;
    if (!c.measured_predicts) continue;
    const bool better = c.derived_predicts->near_gray.mean < c.measured_predicts->near_gray.mean;
    EXPECT_EQ(better, r.want == ramp_source::derived);
  }
}

TEST(Ramps, AreRefusedWithWhatToDo) {
  const auto without = [](auto unwanted, int levels = 9) {
    readings all = chart(additive(uneven), levels);
    std::erase_if(all.rows, [&](const reading& r) { return unwanted(r.drive); });
    return all;
  };
  const auto gray = [](const vec3& d) { return d[0] == d[1] && d[1] == d[2]; };
  const std::pair<readings, const char*> rows[] = {
      {without([](const vec3&) { return true; }), "chart: holds no readings"},
      {without([&](const vec3& d) { return gray(d) && d[0] < 1; }), "no gray ramp: measure at least five"},
      {without([&](const vec3& d) { return gray(d) && d[0] == 1; }), "drive of 87.50 %"},
      {without([&](const vec3& d) { return gray(d) && d[0] == 0; }), "measure black"},
      {without([](const vec3&) { return false; }, 4), "4 levels"},
      {without([&](const vec3& d) { return !gray(d); }), "a gray ramp alone"},
      {without([&](const vec3& d) { return d[2] == 1 && d[0] == 0; }), "no reading of full blue"}};
  for (const auto& [all, fragment] : rows) {
    try {
      ramps(all, ramp_source::automatic);
      ADD_FAILURE() << fragment;
    } catch (const failure& f) {
      EXPECT_EQ(f.kind, fault::content);
      EXPECT_NE(f.message.find(fragment), std::string::npos) << f.message;
    }
  }
  const screen flat = [](const vec3& d) { return shown(uneven, {{std::max(d[0], d[2]), d[1], 0}}); };
  EXPECT_THROW(ramps(chart(flat, 9, 20), ramp_source::automatic), failure) << "blue shows what red does";
  const auto half = without([&](const vec3& d) { return !gray(d) && d[0] + d[1] + d[2] < 0.9; });
  EXPECT_THROW(ramps(half, ramp_source::measured), failure);
  EXPECT_EQ(ramps(half, ramp_source::automatic).taken, ramp_source::derived);
}

}  // namespace
}  // namespace corvantile
