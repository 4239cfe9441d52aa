#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "colour/nonpar_monitor.hpp"
#include "job/judgements.hpp"
#include "tests/monitor/fitted.hpp"
#include "utils/failure.hpp"

namespace corvantile {
namespace {

using names = std::vector<std::string>;
using edit = void (*)(measurements&, settings&);

constexpr double brighter = 1.2;

// A sound display of 17 levels and a job of few rows, either changed by `change`; the warnings' names.
names names_after(edit change) {
  measurements samples = measured({.white_luminance = 100});
  settings set{.tlen = 33};
  change(samples, set);
  names found;
  for (const warning& w : solve(set, samples).warnings) {
    EXPECT_GT(w.message.size(), 60) << "key or sample, value, meaning, and what to do: " << w.message;
    found.emplace_back(name_of(w.kind));
  }
  return found;
}

void scale(measurements& samples, std::size_t row, double by) {
  for (std::size_t k = 3; k < 6; ++k) samples.data(row, k) *= by;
}

// Holds the readings of the red ramp's rows `first` to `last` at that of `first`.
void level(measurements& samples, std::size_t first, std::size_t last) {
  for (std::size_t row = first; row <= last; ++row) {
    for (std::size_t k = 3; k < 6; ++k) samples.data(row, k) = samples.data(first, k);
  }
}

void noisy_levels(measurements& samples, int levels, double noise, std::uint64_t seed = 3) {
  samples = measured({.levels = levels, .white_luminance = 100, .noise = noise, .seed = seed});
}

TEST(Warnings, EachIsProvokedAndHasANeighbourThatIsSilent) {
  constexpr std::size_t red = 17, last = 16;  // rows: the red ramp's first, the white ramp's last
  const struct {
    names name;
    edit provoke, spare;
  } cases[] = {
      {{"ramp-not-to-zero"},
       [](auto& m, auto&) { m.data(last, 1) = 4; },
       [](auto& m, auto&) { m.data(last, 1) = 0; }},
      {{"ramp-below-full"},
       [](auto& m, auto&) { m.data(red, 0) = 250; },
       [](auto& m, auto&) { m.data(red, 0) = 254.99; }},
      {{"zeros-differ"},
       [](auto& m, auto&) { m.data(last, 4) += 0.15; },
       [](auto& m, auto&) { m.data(last, 4) += 0.05; }},
      {{"luminance-rises"},
       [](auto& m, auto&) { scale(m, red + 5, 2); },
       [](auto& m, auto&) { scale(m, red + 5, 1.02); }},
      {{"luminance-level"},
       [](auto& m, auto&) { level(m, red, red + 3); },
       [](auto& m, auto&) { level(m, red, red + 1); }},
      {{"channels-do-not-add"}, [](auto& m, auto&) { scale(m, 0, 1.06); }, [](auto& m, auto&) { scale(m, 0, 1.04); }},
      {{"too-many-pieces"},
       [](auto& m, auto&) { noisy_levels(m, 7, 1e-3); },
       [](auto& m, auto&) { noisy_levels(m, 10, 1e-3); }},
      {{"too-many-pieces"},
       [](auto& m, auto& s) { noisy_levels(m, 21, 4e-3, 5), s.numsegs = 12; },
       [](auto& m, auto& s) { noisy_levels(m, 21, 4e-3, 5), s.numsegs = 9; }},
      {{"table-not-filled"},
       [](auto&, auto& s) { s.temp = 6500, s.alpha = 0.8; },
       [](auto&, auto& s) { s.temp = 6500, s.alpha = 0.79; }},
      {{"table-not-filled"},
       [](auto&, auto& s) { s.temp = 6500, s.beta = 1.1; },
       [](auto&, auto& s) { s.beta = 1.1; }},
      {{"undefined-row"},
       [](auto&, auto& s) { s.temp = 6500, s.wptemp = 6000, s.beta = 1; },
       [](auto&, auto& s) { s.temp = 6500, s.wptemp = 6000, s.beta = 0.9; }},
      {{"white-out-of-reach"}, [](auto&, auto& s) { s.temp = 1500; }, [](auto&, auto& s) { s.temp = 2500; }},
      {{"white-out-of-reach"},
       [](auto&, auto& s) { s.temp = 6500, s.wptemp = 1500; },
       [](auto&, auto& s) { s.temp = -1, s.wptemp = 1500; }},
      {{"white-out-of-reach"},
       [](auto&, auto& s) {
         s.white = vec2{{0.68, 0.31}};
       },
       [](auto&, auto& s) {
         s.white = vec2{{0.4, 0.33}};
       }},
      {{"white-out-of-reach", "matrix-negative", "matrix-exchanged"},
       [](auto&, auto& s) {
         s.mode = match_mode::cv2, s.xytable = {{{0.7, 0.29}}, {{0.17, 0.78}}, {{0.13, 0.04}}, {{0.22, 0.5}}};
       },
       [](auto&, auto& s) {
         s.mode = match_mode::cv2, s.xytable = {{{0.7, 0.29}}, {{0.17, 0.78}}, {{0.13, 0.04}}, {{0.32, 0.4}}};
       }},
      {{"matrix-exchanged"},
       [](auto&, auto& s) { s.mode = match_mode::cv2, std::swap(s.xytable.red, s.xytable.green); },
       [](auto&, auto& s) {
         s.mode = match_mode::cv2, s.xytable.red = {{0.6, 0.35}};
       }},
      {{"matrix-above-one"},
       [](auto&, auto& s) { s.mode = match_mode::cv2, s.rowsum_margin = -0.2, s.lumfrac = brighter; },
       [](auto&, auto& s) { s.mode = match_mode::cv2, s.rowsum_margin = 0, s.lumfrac = brighter; }},
      {{"coarse-codes"},
       [](auto&, auto& s) { s.mode = match_mode::cv2, s.nbits = 11; },
       [](auto&, auto& s) { s.mode = match_mode::cv2, s.nbits = 12; }},
      {{"coarse-codes"},
       [](auto&, auto& s) { s.mode = match_mode::cv2_1, s.nbits = 1; },
       [](auto&, auto& s) { s.nbits = 1; }},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(names_after(c.provoke), c.name);
    EXPECT_EQ(names_after(c.spare), names{}) << c.name[0];
  }
}

TEST(Warnings, ARampThatDoesNotFallFromFullToZeroIsRefusedByLineAndSample) {
  const std::string head = "; made by hand\n3 0 2\n", w = "9 9 9 9 9 9 5 5 5 4 4 4 0 0 0 0 0 0\n",
                    g = "0 9 0 1 3 1 0 5 0 .5 1.5 .5 0 0 0 0 0 0\n", b = "0 0 9 1 1 7 0 0 5 .5 .5 3 0 0 0 0 0 0\n";
  const struct {
    const char *red, *fragment;
  } cases[] = {{"5 0 0 4 2 1\n9 0 0 2 1 .5\n0 0 0 0 0 0\n", "m: line 4: sample 4 (level 1 of the red ramp): drive 5"},
               {"9 0 0 4 2 1\n0 0 0 0 0 0\n5 0 0 0 0 0\n", "m: line 6: sample 6 (level 3 of the red ramp): drive 5"},
               {"9 0 0 4 2 1\n9 0 0 4 2 1\n0 0 0 0 0 0\n", ""}};  // equal drives are no contradiction
  for (const auto& c : cases) {
    std::string message;
    try {
      makemonitor(parse_measurements("m", head + w + c.red + g + b), 3);
    } catch (const failure& stop) {
      message = stop.message;
    }
    EXPECT_EQ(message.substr(0, std::string(c.fragment).size()), c.fragment);
    EXPECT_EQ(message.empty(), std::string(c.fragment).empty()) << message;
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

// What only a search can bring about, told from a record of searches.
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
    for (const warning& w : judge_grays(set, plain, {.ramp = search})) {
      text += std::string(name_of(w.kind)) + ": " + w.message;
    }
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
    for (const warning& w : found) EXPECT_EQ(w.kind, caution::dark_swath);
  }
}

}  // namespace
}  // namespace corvantile
