#include "corvantile/report/page.hpp"

#include <gtest/gtest.h>
#include <regex>

#include "markup.hpp"
#include "shown_display.hpp"

namespace corvantile {
namespace {

std::size_t count(const std::string& s, const std::string& what) {
  std::size_t n = 0;
  for (std::size_t at = s.find(what); at != std::string::npos; at = s.find(what, at + 1)) ++n;
  return n;
}

void expect_page(const std::string& page) {
  expect_sound(std::regex_replace(page, std::regex("<style>[^<]*</style>"), ""));
  EXPECT_FALSE(std::regex_search(page, std::regex("https?:|//|url\\(|@import|src=|<script|<link|<object|<iframe")));
  EXPECT_EQ(count(page, "<svg "), count(page, "role=\"img\"><title>"));
  EXPECT_EQ(count(page, "<svg "), count(page, "<desc>"));
  EXPECT_LT(page.size(), 500'000U);
}

TEST(ReportPage, OfNothingAtAllIsStillAPage) {
  report_data data;
  expect_page(report_page(data));
  data.gray.measured.emplace();
  data.gamut.measured.emplace();
  data.measured.emplace();
  data.tables.curves = {{"empty", "", "", matrix(0, 3)}, {"short", "", "", matrix(1, 3)}};
  data.differences.ramps.resize(2);
  data.differences.ramps[0].name = "gray";
  data.differences.patches.resize(1);
  data.trust.unseen = {{{}, unknown}, {{}, 1e9}};
  expect_page(report_page(data));
}

TEST(ReportPage, HoldsEverythingWithinItsSize) {
  const shown_display s = shown_example();
  report_data data = gather_report(s.source());
  std::vector<reading> readings;
  for (int i = 0; i < 4000; ++i) {
    const vec3 u{{i % 16 / 15.0, i / 16 % 16 / 15.0, i / 256 / 15.0}};
    readings.push_back({u, inp2out_vec(s.display, corrected(s.tables, u))});
  }
  gather_measured(data, s.source(), readings);
  data.display = "A \"<b>display</b>\" & more \xff";
  data.trust.findings = {{"id", "warning", "2 < 3", "do this & that"}};
  data.remake.settings = {{"wgfile", "'<a>'"}};
  const std::string page = report_page(data);
  expect_page(page);
  EXPECT_EQ(page.find("<b>display"), std::string::npos);
  EXPECT_NE(page.find("The worst 1500 of 4000 patches"), std::string::npos);
  for (const char* id :
       {"gray-cct", "gray-distance", "gamut-uv", "tone-luminance", "accuracy", "ramp-cyan", "table-1"}) {
    const std::string picture = report_picture(data, id);
    EXPECT_TRUE(picture.starts_with("<svg xmlns=\"http://www.w3.org/2000/svg\" id=\"" + std::string(id) + '"')) << id;
    expect_sound(std::regex_replace(picture, std::regex("<style>[^<]*</style>"), ""));
  }
  EXPECT_EQ(report_picture(data, "no-such"), "");
}

}  // namespace
}  // namespace corvantile
