#include "numerics/matrix.hpp"

#include <gtest/gtest.h>

namespace corvantile {
namespace {

TEST(Matrix, ColumnsArePrimariesAndElementsAreColumnMajor) {
  const mat3 m{{vec3{{1, 2, 3}}, vec3{{4, 5, 6}}, vec3{{7, 8, 9}}}};
  EXPECT_EQ(m * (vec3{{0, 1, 0}}), (vec3{{4, 5, 6}})) << "a unit vector picks out its column";
  EXPECT_EQ(m(2, 0), 3) << "row, column";

  matrix d(2, 3);
  d(1, 2) = 5;
  EXPECT_EQ(d.data()[1 + 2 * 2], 5);
  EXPECT_EQ(d.col(2)[1], 5);
}

TEST(Matrix, BatchEqualsSingleRowByRow) {
  const mat3 m{{vec3{{1, 2, 3}}, vec3{{0.1, 0.2, 0.3}}, vec3{{7, 8, 9}}}};
  const auto kernel = [&](const vec3& x) { return m * x; };
  matrix x(2, 3);
  set_row3(x, 0, {{0.3, 0.7, 0.9}});
  set_row3(x, 1, {{-1, 1e9, 1e-9}});
  const matrix y = apply(kernel, x);
  for (std::size_t i = 0; i < 2; ++i) EXPECT_EQ(row3(y, i), apply(kernel, row3(x, i)));
}

}  // namespace
}  // namespace corvantile
