#include "corvantile/utils/array_io.hpp"

#include <filesystem>
#include <gtest/gtest.h>
#include <limits>
#include <sstream>
#include <unistd.h>

#include "corvantile/utils/file_input.hpp"
#include "corvantile/utils/file_output.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

static std::string row_of(const std::vector<double>& v) {
  matrix m(1, v.size());
  std::ranges::copy(v, m.data().begin());
  return prtmat_real(m);
}

TEST(Print, FieldWidthFollowsTheData) {
  EXPECT_EQ(row_of({1.5, 0.25}), "   1.500000000000   0.250000000000\n") << "width 14: room for the zero";
  EXPECT_EQ(row_of({0.5, 0}), "   .500000000000   .000000000000\n") << "all below 1: width 13, no zeros";
  EXPECT_EQ(row_of({0.5, -1e-20}), "   0.500000000000   -.000000000000\n") << "any negative entry needs width 14";
  EXPECT_EQ(row_of({0.5, -0.0}), "   .500000000000   *************\n") << "a negative zero does not";
  EXPECT_EQ(row_of({nan, 0.5, nan}), "             NaN   .500000000000             NaN\n") << "nor does NaN";
  EXPECT_EQ(row_of({}), "\n");
  int_matrix n(2, 2);
  n(1, 0) = -1000;
  EXPECT_EQ(prtmat_int(n, "n"), "n\n       0       0\n   -1000       0\n");
  std::ostringstream out;
  ppdump(out, makeppoly({0, 0.5}, {makepoly({0.1, -1e-300})}), "tone curve");
  EXPECT_EQ(out.str(),
            " tone curve\n           2 knots:\n                         0\n                       0.5\n"
            "           1 polynomials\n polynomial            0\n"
            "                           0.1\n                       -1e-300\n");
}

TEST(ArrayFiles, AreReadBackAndPackCellCorners) {
  const std::string name = testing::TempDir() + "array." + std::to_string(::getpid());
  std::vector<double> v{9};
  EXPECT_FALSE(loadarray(name, v)) << "missing";
  savearray(name, std::vector<double>{0.1, -1e300});
  EXPECT_EQ(read_file(name), " 0.1\n -1e+300\n");
  for (const std::string text : {"7\n\n 7\r\n7", "7 7\n7 8\n7", "7\n7\n7\nend\n3\n"}) {
    write_file(name, text);
    EXPECT_TRUE(loadarray(name, v));
    EXPECT_EQ(v, std::vector<double>(3, 7)) << "as many as there are lines that begin with a number";
  }
  write_file(name, "1 one\n2\n");
  EXPECT_FALSE(loadarray(name, v));
  EXPECT_EQ(v.size(), 0u);
  int_matrix a(2, 3);
  std::ranges::copy(std::array{0x3ff, 1, 0, 2, 1024 + 5, -1}, a.data().begin());  // the low ten bits count
  dumpxram(a, name);
  // 1111111111 0000000000 0000000001 0000000010, then 0000000000 0000000101 0000000010 1111111111
  EXPECT_EQ(read_file(name),
            "MEMORY_INITIALIZATION_RADIX=16;\nMEMORY_INITIALIZATION_VECTOR=\nFFC0000402,\n0000500BFF;\n");
  std::filesystem::remove(name);
}

}  // namespace corvantile
