#include "corvantile/utils/array_helpers.hpp"

#include <cmath>
#include <gtest/gtest.h>

namespace corvantile {

using vec = std::vector<double>;

TEST(ArrayHelpers, CountFromOneAndDownTheColumns) {
  int_matrix mask(2, 2);
  mask(1, 0) = mask(0, 1) = 1;
  EXPECT_EQ(find_vec({true, false, true}), (std::vector<int>{1, 3}));
  EXPECT_EQ(find_mat(mask), (std::vector<int>{2, 3}));
  EXPECT_EQ(risingedgetrigger(vec{5, 1, std::nan(""), 5, std::nan(""), 5}, 1, 3), 4)
      << "NaN neither begins nor ends a run";
  EXPECT_EQ(fallingedgetrigger(vec{0, 1, 2, 0, 0}, 1, 2), 4) << "strictly below";
  EXPECT_EQ(risingedgetrigger(vec(9, 1), 0), 0) << "ten in a row by default";
  EXPECT_EQ(risingedgetrigger(vec(10, 1), 0), 1);
  EXPECT_EQ((vec{mean(vec{}), mean(vec{1, 2, 6})}), (vec{0, 3}));
  EXPECT_EQ((vec{std(vec{}), std(vec{7}), std(vec{1, 3})}), (vec{0, 7, std::sqrt(2.0)})) << "of one: itself";
  EXPECT_EQ(colstack(colunstack(vec{0, 1, 2, 3, 4, 5}, 2)), (vec{0, 1, 2, 3, 4, 5}));
  EXPECT_EQ(colunstack(vec(7, 1), 3), matrix(3, 2)) << "3 does not divide 7: zeros";
}

}  // namespace corvantile
