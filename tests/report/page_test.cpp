#include "corvantile/report/page.hpp"

#include <gtest/gtest.h>

#include "corvantile/report/wording.hpp"
#include "markup.hpp"
#include "tests/appraisal/shown_display.hpp"

namespace corvantile {
namespace {

std::size_t count(const std::string& s, const std::string& what) {
  std::size_t n = 0;
  for (std::size_t at = s.find(what); at != std::string::npos; at = s.find(what, at + 1)) ++n;
  return n;
}

void expect_page(const std::string& page) {
  expect_sound(page);
  expect_standalone(page);
  EXPECT_EQ(count(page, "<svg "), count(page, "role=\"img\"><title>"));
  EXPECT_EQ(count(page, "<svg "), count(page, "<desc>"));
  EXPECT_LT(page.size(), 500'000U);
}

TEST(ReportPage, OfNothingAtAllIsStillAPage) {
  report_data data;
  expect_page(report_page(data));
  data.measured.emplace();
  data.tables = {.two_tables = true, .pre = matrix(0, 3), .post = matrix(1, 3)};
  data.figures.patches.resize(1);
  data.measurements.accuracy.patches = {{{}, {}, {}, unknown}, {{}, {}, {}, 1e9}};
  expect_page(report_page(data));
}

TEST(ReportPage, HoldsEverythingWithinItsSize) {
  const shown_display s = shown_example();
  report_data data;
  data.figures = figures_of(s.as_subject());
  data.tables = s.tables;
  data.measurements.accuracy.patches = {{{{0.5, 0.25, 1}}, {}, {}, 1.5}};
  readings after;
  for (int i = 0; i < 4000; ++i) {
    const vec3 u{{i % 16 / 15.0, i / 16 % 16 / 15.0, i / 256 / 15.0}};
    after.rows.push_back({u, inp2out_vec(s.display, corrected(s.tables, u))});
  }
  data.measured = verify(s.as_subject(), after);
  data.display = "A \"<b>display</b>\" & more \xff";
  data.findings = {{"id", severity::warning, "2 < 3", "do this & that"}};
  data.remake.settings = {{"wgfile", "'<a>'"}};
  const std::string page = report_page(data);
  expect_page(page);
  EXPECT_EQ(page.find("<b>display"), std::string::npos);
  EXPECT_NE(page.find("The worst 1500 of 4000 patches"), std::string::npos);
  for (const char* id :
       {"gray-cct", "gray-distance", "gamut-uv", "tone-luminance", "accuracy", "ramp-cyan", "table-1"}) {
    const std::string picture = report_picture(data, id);
    EXPECT_TRUE(picture.starts_with("<svg xmlns=\"http://www.w3.org/2000/svg\" id=\"" + std::string(id) + '"')) << id;
    expect_sound(picture);
  }
  EXPECT_EQ(report_picture(data, "no-such"), "");
}

TEST(Wording, SaysHowTheTablesWereLoadedAndNamesPatches) {
  const std::pair<load_state, const char*> rows[] = {{load_state::once, "loaded, once"},
                                                     {load_state::none, "not to have been loaded"},
                                                     {load_state::twice, "applied twice"},
                                                     {load_state::another_white, "white is not"},
                                                     {load_state::unclear, "does not do"}};
  for (const auto& [state, words] : rows) {
    verification v;
    v.loaded = state;
    EXPECT_NE(diagnosis_of(v)[0].find(words), std::string::npos) << diagnosis_of(v)[0];
  }
  EXPECT_EQ(patch_name({{0.125, 0.125, 0.125}}), "drive 12.5\u00a0%");
  EXPECT_EQ(patch_name({{0, 1, 1}}), "cyan");
  EXPECT_EQ(patch_name({{0, 1, 0.5}}), "0, 100, 50\u00a0%");
}

}  // namespace
}  // namespace corvantile
