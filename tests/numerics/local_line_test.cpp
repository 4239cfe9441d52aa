#include "corvantile/numerics/local_line.hpp"

#include <gtest/gtest.h>

namespace corvantile {
namespace {

TEST(LocalLine, KeepsLinesAndAveragesWhatScatters) {
  weighted_samples line, scatter, one{{0.5}, {7}, {1}}, twice{{0.5, 0.5}, {1, 4}, {2, 1}};
  for (int i = 0; i <= 32; ++i) {
    line.x.push_back(i / 32.0);
    line.y.push_back(3 - 2 * i / 32.0);
    line.weight.push_back(1 + i % 3);
    scatter.x.push_back(i / 32.0);
    scatter.y.push_back(i % 2 == 0 ? 1 : -1);
    scatter.weight.push_back(1);
  }
  for (const double at : {0.0, 0.1, 0.77, 1.0}) EXPECT_NEAR(local_line(line, at, 0.25), 3 - 2 * at, 1e-12) << at;
  EXPECT_NEAR(local_line(line, 0.51, 0.001), 3 - 2 * 0.51, 1e-12) << "the reach grows to three samples";
  EXPECT_NEAR(local_line(scatter, 0.5, 0.25), 0, 0.01);
  EXPECT_NEAR(local_line(scatter, 1, 0.25), 0, 0.3) << "from one side only";
  EXPECT_EQ(local_line(one, 0.9, 0.25), 7);
  EXPECT_NEAR(local_line(twice, 0.9, 0.25), 2, 1e-12) << "their mean by weight";
}

}  // namespace
}  // namespace corvantile
