#include <algorithm>
#include <gtest/gtest.h>

#include "corvantile/colour/chromaticity.hpp"
#include "corvantile/colour/nonpar_monitor.hpp"
#include "tests/monitor/fitted.hpp"

namespace corvantile {
namespace {

constexpr std::size_t rows = 64;

struct ramp {
  matrix table{rows, 3};
  gray_search search;
};
ramp gray_of(const monitor& mon, bool restart) {
  ramp r;
  r.search = chromaticity_lut(r.table, mon, chromaticity(mon.whitepoint), make_gamma_table(2.2, 256), 0.5, restart);
  return r;
}

std::size_t missed(const ramp& r) {
  return static_cast<std::size_t>(
      std::ranges::count_if(r.search.levels, [](const gray_level& l) { return l.left > reachable; }));
}

// Seven noisy levels with five pieces: curves that swing between the readings, and searches that end in their folds.
TEST(Restart, MendsWhatTheChainMissedAndLeavesTheRest) {
  std::size_t astray = 0, mended = 0;
  for (std::uint64_t seed = 1; seed <= 40; ++seed) {
    simulated_display d = random_display(seed);
    d.levels = 7;
    d.noise = 0.003;
    const monitor mon = fitted(d);
    const ramp once = gray_of(mon, false), again = gray_of(mon, true);
    for (std::size_t i = 0; i < rows; ++i) {
      const gray_level &before = once.search.levels[i], &after = again.search.levels[i];
      EXPECT_EQ(row3(again.table, i), after.inp);
      EXPECT_LE(after.left, before.left);
      if (before.left <= reachable) {
        EXPECT_EQ(after.inp, before.inp) << "found at once: not touched";
      }
    }
    if (missed(once) == 0) continue;
    ++astray;
    mended += missed(again) == 0;
  }
  EXPECT_GT(astray, 5);
  EXPECT_GT(4 * mended, 3 * astray) << "three in four";
}

}  // namespace
}  // namespace corvantile
