#include "utils/array_helpers.hpp"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace corvantile {
namespace {

using vec = std::vector<double>;
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

TEST(Find, IndicesCountFromOne) {
  EXPECT_EQ(find_vec({false, false}), std::vector<int>{});
  EXPECT_EQ(find_vec({true, false, true}), (std::vector<int>{1, 3}));
  int_matrix mask(2, 2);
  mask(1, 0) = 1;
  mask(0, 1) = 1;
  EXPECT_EQ(find_mat(mask), (std::vector<int>{2, 3})) << "down the columns";
}

TEST(EdgeTrigger, FirstSustainedCrossing) {
  const struct {
    vec v;
    double level;
    int nconsec;
    int rising;
    int falling;
    const char* why;
  } rows[] = {
      {{0, 5, 5, 5, 0}, 1, 3, 2, 0, "a run of just the length"},
      {{0, 5, 5, 5, 0}, 1, 4, 0, 0, "too short"},
      {{5, 0, 5, 5}, 1, 2, 3, 0, "a short run before"},
      {{1, 1, 1}, 1, 1, 0, 0, "strictly above, strictly below"},
      {{2, 0, 0}, 1, 2, 0, 2, "falling"},
      {{nan, 5, 5}, 1, 2, 2, 0, "not-a-number cannot begin a run"},
      {{5, nan, 5}, 1, 3, 1, 0, "but does not end one"},
      {{5, 5}, nan, 1, 0, 0, "no level"},
      {{5, 5}, 1, 3, 0, 0, "fewer samples than asked for"},
  };
  for (const auto& r : rows) {
    SCOPED_TRACE(r.why);
    EXPECT_EQ(risingedgetrigger(r.v, r.level, r.nconsec), r.rising);
    EXPECT_EQ(fallingedgetrigger(r.v, r.level, r.nconsec), r.falling);
  }
  EXPECT_EQ(risingedgetrigger(vec(9, 1), 0), 0) << "ten in a row unless told otherwise";
  EXPECT_EQ(risingedgetrigger(vec(10, 1), 0), 1);
}

TEST(Statistics, MeanAndSampleDeviation) {
  EXPECT_EQ(mean(vec{}), 0);
  EXPECT_EQ(mean(vec{1, 2, 6}), 3);
  EXPECT_EQ(std(vec{}), 0);
  EXPECT_EQ(std(vec{7}), 7) << "of one sample: the sample";
  EXPECT_EQ(std(vec{1, 3}), std::sqrt(2.0));
}

TEST(Columns, StackAndUnstack) {
  matrix a(2, 3);
  for (std::size_t k = 0; k < 6; ++k) a(k % 2, k / 2) = static_cast<double>(k);
  EXPECT_EQ(colstack(a), (vec{0, 1, 2, 3, 4, 5}));
  EXPECT_EQ(colunstack(colstack(a), 2), a);
  EXPECT_EQ(colunstack(vec(7, 1), 3), matrix(3, 2)) << "3 does not divide 7: zeros";
}

}  // namespace
}  // namespace corvantile
