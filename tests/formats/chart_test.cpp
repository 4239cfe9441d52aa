#include "corvantile/formats/chart.hpp"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <set>

#include "corvantile/formats/detect.hpp"
#include "corvantile/formats/hcfr.hpp"
#include "tests/formats/told.hpp"

namespace corvantile {

static std::size_t different(const std::vector<chart_patch>& chart) {
  std::set<std::array<double, 3>> seen;
  for (const chart_patch& patch : chart) seen.insert(patch.drive.v);
  return seen.size();
}

TEST(Chart, HoldsTheRampsAndRepeatsWhiteAndBlack) {
  const struct {
    std::size_t levels;
    chart_ramps ramps;
    std::size_t verify, want;
  } charts[] = {{17, chart_ramps::derived, 0, 20},
                {17, chart_ramps::measured, 0, 65},
                {5, chart_ramps::measured, 0, 17},
                {256, chart_ramps::derived, 0, 259},
                {17, chart_ramps::derived, 100, 120}};
  for (const auto& c : charts) {
    const auto chart = make_chart(c.levels, c.ramps, c.verify);
    EXPECT_EQ(different(chart), c.want);
    const vec3 white{{1, 1, 1}};
    EXPECT_EQ(chart.front().drive, white);
    EXPECT_EQ(chart[chart.size() - 2].drive, white);
    EXPECT_EQ(chart.back().drive, vec3{});
    std::size_t since = 0;
    for (const chart_patch& patch : chart) {
      since = patch.drive == white ? 0 : since + 1;
      EXPECT_LE(since, 21U) << "patches between two whites";
    }
  }
  EXPECT_THROW(make_chart(4, chart_ramps::derived), failure);
}

TEST(Chart, SpreadsItsFurtherPatches) {
  std::size_t near_gray = 0;
  std::array<int, 8> octants{};
  for (const chart_patch& patch : make_chart(5, chart_ramps::derived, 300)) {
    const auto& [r, g, b] = patch.drive.v;
    const double spread = std::ranges::max(patch.drive.v) - std::ranges::min(patch.drive.v);
    near_gray += spread > 0 && spread <= 0.084 ? 1 : 0;  // twice 0.04, and half a code at each end
    octants[(r < 0.5 ? 0U : 1U) + (g < 0.5 ? 0U : 2U) + (b < 0.5 ? 0U : 4U)] += spread > 0.084 ? 1 : 0;
  }
  EXPECT_GE(near_gray, 100U);
  EXPECT_LE(near_gray, 110U) << "some of the cube, about 2 %, lie there too";
  for (const int n : octants) EXPECT_NEAR(n, 25, 5);
}

TEST(Chart, ComesBackFromEveryFormat) {
  const auto chart = make_chart(17, chart_ramps::measured, 40);
  std::string measured = write_chart_csv(chart);
  for (std::size_t i = 0; (i = measured.find(",,,", i)) != std::string::npos;) measured.replace(i, 3, ",1,1,1");
  const readings from_csv = read_readings({"c.csv", measured});
  ASSERT_EQ(from_csv.rows.size(), chart.size());

  std::string sheet = "Color;X;Y;Z;R;G;B;deltaE\n";
  const std::string list = write_chart_hcfr(chart);
  for (std::size_t i = 0; i < list.size(); i = list.find('\n', i) + 1) {
    std::size_t name = i;
    for (int comma = 0; comma < 3; ++comma) name = list.find(',', name) + 1;
    sheet += list.substr(name, list.find(',', name) - name) + ";1;1;1;1;1;1;1\n";
  }
  const readings from_hcfr = read_readings({"c.csv", sheet});
  ASSERT_EQ(from_hcfr.rows.size(), chart.size());

  std::string ti3 = write_chart_ti1(chart, "today");
  ti3.replace(0, 4, "CTI3");
  const readings from_argyll = read_readings({"c.ti3", ti3});
  ASSERT_EQ(from_argyll.rows.size(), chart.size());

  for (std::size_t i = 0; i < chart.size(); ++i) {
    EXPECT_EQ(from_csv.rows[i].drive, chart[i].drive);
    for (std::size_t c = 0; c < 3; ++c) {
      EXPECT_NEAR(from_hcfr.rows[i].drive[c], chart[i].drive[c], 0.5 / 219 + 1e-12);
      EXPECT_NEAR(from_hcfr.rows[i].drive[c] * 219, std::round(from_hcfr.rows[i].drive[c] * 219), 1e-9);
      EXPECT_NEAR(from_argyll.rows[i].drive[c], chart[i].drive[c], 1e-7);
    }
  }
}

}  // namespace corvantile
