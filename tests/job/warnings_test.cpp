#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "corvantile/colour/nonpar_monitor.hpp"
#include "corvantile/job/judgements.hpp"
#include "tests/monitor/fitted.hpp"

namespace corvantile {
namespace {

using names = std::vector<std::string>;
using edit = void (*)(measurements&);

// The ids of the warnings of a small job on a good display with 17 levels, after `change`.
names names_after(
    settings set, edit change = [](measurements&) {}) {
  measurements samples = measured({.white_luminance = 100});
  set.tlen = 33;
  change(samples);
  names found;
  for (const finding& w : solve(set, samples).warnings) {
    EXPECT_GT(text_of(w).size(), 60) << "key or sample, value, meaning, and what to do: " << text_of(w);
    EXPECT_NE(w.action, "");
    found.push_back(w.id);
  }
  return found;
}

void scale(measurements& samples, std::size_t row, double by) {
  for (std::size_t k = 3; k < 6; ++k) samples.data(row, k) *= by;
}

// Gives rows `first` to `last` of the red ramp the reading of `first`.
void level(measurements& samples, std::size_t first, std::size_t last) {
  for (std::size_t row = first; row <= last; ++row) {
    for (std::size_t k = 3; k < 6; ++k) samples.data(row, k) = samples.data(first, k);
  }
}

void noisy_levels(measurements& samples, int levels, double noise, std::uint64_t seed = 3) {
  samples = measured({.levels = levels, .white_luminance = 100, .noise = noise, .seed = seed});
}

TEST(Warnings, EachIsProvokedByReadingsAndHasANeighbourThatIsSilent) {
  constexpr std::size_t red = 17, last = 16;  // rows: the red ramp's first, the white ramp's last
  const struct {
    const char* name;
    int numsegs;
    edit provoke;
    int enough;
    edit spare;
  } cases[] = {
      {"ramp-not-to-zero", 5, [](auto& m) { m.data(last, 1) = 4; }, 5, [](auto& m) { m.data(last, 1) = 0; }},
      {"ramp-below-full", 5, [](auto& m) { m.data(red, 0) = 250; }, 5, [](auto& m) { m.data(red, 0) = 254.99; }},
      {"dark-spread", 5, [](auto& m) { m.data(last, 4) += 0.15; }, 5, [](auto& m) { m.data(last, 4) += 0.05; }},
      {"luminance-rises", 5, [](auto& m) { scale(m, red + 5, 2); }, 5, [](auto& m) { scale(m, red + 5, 1.02); }},
      {"luminance-level", 5, [](auto& m) { level(m, red, red + 3); }, 5, [](auto& m) { level(m, red, red + 1); }},
      {"additivity", 5, [](auto& m) { scale(m, 0, 1.06); }, 5, [](auto& m) { scale(m, 0, 1.04); }},
      {"numsegs", 5, [](auto& m) { noisy_levels(m, 7, 1e-3); }, 5, [](auto& m) { noisy_levels(m, 10, 1e-3); }},
      {"numsegs", 12, [](auto& m) { noisy_levels(m, 21, 4e-3, 5); }, 9,
       [](auto& m) { noisy_levels(m, 21, 4e-3, 5); }}};
  for (const auto& c : cases) {
    EXPECT_EQ(names_after({.numsegs = c.numsegs}, c.provoke), names{c.name});
    EXPECT_EQ(names_after({.numsegs = c.enough}, c.spare), names{}) << c.name;
  }
}

TEST(Warnings, EachIsProvokedBySettingsAndHasANeighbourThatIsSilent) {
  using enum match_mode;
  constexpr chromaticity_table beyond{{{0.7, 0.29}}, {{0.17, 0.78}}, {{0.13, 0.04}}, {{0.22, 0.5}}};
  chromaticity_table exchanged = srgb, white_inside = beyond, own = srgb;
  std::swap(exchanged.red, exchanged.green);
  white_inside.white = {{0.32, 0.4}};
  own.red = {{0.6, 0.35}};
  const struct {
    names name;
    settings provoke, spare;
  } cases[] = {
      {{"table-not-filled"}, {.temp = 6500, .alpha = 0.8}, {.temp = 6500, .alpha = 0.79}},
      {{"table-not-filled"}, {.temp = 6500, .beta = 1.1}, {.beta = 1.1}},
      {{"undefined-row"}, {.temp = 6500, .wptemp = 6000, .beta = 1}, {.temp = 6500, .wptemp = 6000, .beta = 0.9}},
      {{"white-out-of-reach"}, {.temp = 1500}, {.temp = 2500}},
      {{"white-out-of-reach"}, {.temp = 6500, .wptemp = 1500}, {.temp = -1, .wptemp = 1500}},
      {{"white-out-of-reach"}, {.white = {{{0.68, 0.31}}}}, {.white = {{{0.4, 0.33}}}}},
      {{"white-out-of-reach", "matrix-negative", "matrix-exchanged"},
       {.mode = cv2, .xytable = beyond},
       {.mode = cv2, .xytable = white_inside}},
      {{"matrix-exchanged"}, {.mode = cv2, .xytable = exchanged}, {.mode = cv2, .xytable = own}},
      {{"matrix-above-one"},
       {.mode = cv2, .lumfrac = 1.2, .rowsum_margin = -0.2},
       {.mode = cv2, .lumfrac = 1.2, .rowsum_margin = 0}},
      {{"coarse-codes"}, {.mode = cv2, .nbits = 11}, {.mode = cv2, .nbits = 12}},
      {{"coarse-codes"}, {.mode = cv2_1, .nbits = 1}, {.nbits = 1}}};
  for (const auto& c : cases) {
    EXPECT_EQ(names_after(c.provoke), c.name);
    EXPECT_EQ(names_after(c.spare), names{}) << c.name[0];
  }
}

TEST(Warnings, TheLargestNumberOfPiecesFollowsTheWidestGap) {
  monitor mon = plain;
  for (const auto& [gap, pieces] : {std::pair{0.5, 2}, {0.3, 3}, {0.1, 11}, {0.001, 256}}) {
    mon.rampy = matrix(2, 3);
    set_row3(mon.rampy, 1, {{gap, gap / 2, gap / 3}});
    EXPECT_EQ(largest_numsegs(mon), pieces);
  }
}

// These warnings depend on searches, so the test makes up their records.
TEST(Warnings, GraysThatWereNotFoundAreNamed) {
  const settings set{.hwid = 0};
  gray_search found;
  found.top.xyz = plain.whitepoint;
  found.levels.resize(11);
  for (std::size_t i = 0; i < 11; ++i) {
    const double s = static_cast<double>(i) / 10;
    found.levels[i] = {s * plain.whitepoint + (1 - s) * plain.darklight, {{s, s, s}}, 1e-12};
  }
  const auto told = [&](auto change) {
    gray_search search = found;
    change(search);
    std::string text;
    for (const finding& f : judge_grays(set, plain, {.ramp = search})) text += f.id + ": " + f.message;
    return text;
  };
  EXPECT_EQ(told([](gray_search&) {}), "");
  const std::string missed = told([](gray_search& s) { s.levels[7].left = s.levels[8].left = 25; });
  EXPECT_TRUE(missed.starts_with("gray-not-found")) << missed;
  EXPECT_NE(missed.find("rows 7 to 8 of 0 to 10"), missed.npos) << missed;
  EXPECT_NE(missed.find("(row 7)"), missed.npos) << "the farther off of the two";
  EXPECT_EQ(told([](gray_search& s) { s.levels[7].left = 0.9e-7; }), "") << "as near as a search asks for";
  EXPECT_EQ(told([](gray_search& s) { s.levels[1] = {0.5 * plain.darklight, {}, 1}; }), "") << "below the dark";
  EXPECT_TRUE(told([](gray_search& s) { s.levels[7].inp[2] = 0.5; }).starts_with("gray-falls"));
  EXPECT_EQ(told([](gray_search& s) { s.levels[7].inp[2] = 0.5995; }), "");
  EXPECT_EQ(told([](gray_search& s) { s.levels[3].inp[2] = 0.1; }), "") << "below alpha";
}

TEST(Warnings, ASwathThatCostsLightIsTold) {
  const settings set{.temp = 6500, .hwid = 0.005};
  const monitor mon = plain;
  for (const double share : {1.0, 0.99}) {
    gray_search search{ramptop_temp(mon, 6500), {}};
    search.top.xyz = share * search.top.xyz;
    search.levels.assign(2, {search.top.xyz, search.top.inp, 0});
    const auto found = judge_grays(set, mon, {.ramp = search});
    ASSERT_EQ(found.size(), share < 1 ? 1 : 0);
    for (const finding& f : found) EXPECT_EQ(f.id, "dark-swath");
  }
}

}  // namespace
}  // namespace corvantile
