#include "utils/array_io.hpp"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <limits>
#include <sstream>

#include "utils/text.hpp"

namespace corvantile {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

matrix row(const std::vector<double>& v) {
  matrix m(1, v.size());
  std::copy(v.begin(), v.end(), m.data().begin());
  return m;
}

TEST(PrintMatrix, FieldWidthFollowsTheData) {
  const struct {
    std::vector<double> v;
    const char* want;
    const char* why;
  } rows[] = {
      {{1.5, 0.25}, "   1.500000000000   0.250000000000\n", "width 14: room for the zero"},
      {{0.5, 0}, "   .500000000000   .000000000000\n", "all below 1: width 13, no zeros before the point"},
      {{0.5, -1e-20}, "   0.500000000000   -.000000000000\n", "any negative entry asks for width 14"},
      {{0.5, -0.0}, "   .500000000000   *************\n", "a negative zero does not widen the field"},
      {{1, -1}, "    1.000000000000   -1.000000000000\n", "the smallest entry is the longer one"},
      {{nan, 0.5, nan}, "             NaN   .500000000000             NaN\n", "not-a-number entries do not count"},
      {{nan, nan}, "   NaN   NaN\n", "nothing else"},
      {{}, "\n", "no columns"},
  };
  for (const auto& r : rows) EXPECT_EQ(prtmat_real(row(r.v)), r.want) << r.why;
  EXPECT_EQ(prtmat_real(matrix(0, 3)), "") << "no rows";
}

TEST(PrintMatrix, RowsTitleAndIntegers) {
  mat3 m;
  m(0, 2) = 1;
  m(1, 0) = 2;
  std::ostringstream out;
  prtmat_real(out, m, "with matrix: ");
  EXPECT_EQ(out.str(),
            "with matrix: \n"
            "   0.000000000000   0.000000000000   1.000000000000\n"
            "   2.000000000000   0.000000000000   0.000000000000\n"
            "   0.000000000000   0.000000000000   0.000000000000\n");

  int_matrix n(2, 2);
  n(0, 0) = 255;
  n(1, 1) = -7;
  EXPECT_EQ(prtmat_int(n), "   255     0\n     0    -7\n");
  n(1, 0) = -1000;
  EXPECT_EQ(prtmat_int(n), "     255       0\n   -1000      -7\n") << "the smallest entry is the longer one";
}

TEST(PrintCurve, ListsKnotsAndPieces) {
  std::ostringstream out;
  ppdump(out, makeppoly({0, 0.5, 1}, {makepoly(std::vector<double>{0.1, -1e-300}), makepoly(std::vector<double>{2})}),
         "tone curve");
  EXPECT_EQ(out.str(),
            " tone curve\n"
            "           3 knots:\n"
            "                         0\n"
            "                       0.5\n"
            "                         1\n"
            "           2 polynomials\n"
            " polynomial            0\n"
            "                           0.1\n"
            "                       -1e-300\n"
            " polynomial            1\n"
            "                             2\n");
}

class ArrayFiles : public testing::Test {
 protected:
  void TearDown() override { std::filesystem::remove(name); }
  void write(std::string_view text) const { std::ofstream(name, std::ios::binary) << text; }
  std::string text() const { return read_file(name).value_or("cannot be opened"); }
  const std::string name = (std::filesystem::path(testing::TempDir()) / "array_files_test.txt").string();
};

TEST_F(ArrayFiles, RoundTrip) {
  const std::vector<double> v{0.1, -1e300, 5e-324, 7};
  savearray(name, v);
  std::vector<double> w{1, 2, 3};
  EXPECT_TRUE(loadarray(name, w));
  EXPECT_EQ(w, v);
}

TEST_F(ArrayFiles, LoadCountsLinesThenReadsNumbers) {
  const struct {
    const char* text;
    std::vector<double> want;
    const char* why;
  } rows[] = {
      {"1\n\n 2\r\n3", {1, 2, 3}, "one per line, blank lines skipped"},
      {"1 2\n3 4\n", {1, 2}, "as many numbers as lines, read in their order"},
      {"1\n2\nend\n3\n", {1, 2}, "bad text ends the list"},
      {"1 one\n2\n", {}, "bad text among the numbers"},
      {"", {}, "empty"},
      {"x", {}, "no number"},
  };
  for (const auto& r : rows) {
    SCOPED_TRACE(r.why);
    write(r.text);
    std::vector<double> v{9};
    EXPECT_EQ(loadarray(name, v), !r.want.empty());
    EXPECT_EQ(v, r.want);
  }
  std::vector<double> v{9};
  EXPECT_FALSE(loadarray(name + ".missing", v));
}

TEST_F(ArrayFiles, MemoryInitialisationPacksCellCorners) {
  int_matrix a(2, 3);
  const int values[] = {0x3ff, 1, 0, 2, 1024 + 5, -1};  // columns: bits above the low ten are dropped
  std::copy(std::begin(values), std::end(values), a.data().begin());
  dumpxram(a, name);
  // 1111111111 0000000000 0000000001 0000000010, then 0000000000 0000000101 0000000010 1111111111
  EXPECT_EQ(text(), "MEMORY_INITIALIZATION_RADIX=16;\nMEMORY_INITIALIZATION_VECTOR=\nFFC0000402,\n0000500BFF;\n");
}

TEST_F(ArrayFiles, FailedWriteEndsTheRun) {
  const std::string target = testing::TempDir() + "no_such_directory/a.txt";
  try {
    savearray(target, std::vector<double>{1});
    FAIL() << "written";
  } catch (const stop_run& stop) {
    EXPECT_EQ(stop.status, 6);
    EXPECT_EQ(stop.message, "Cannot write " + target + ": No such file or directory");
  }
  EXPECT_THROW(dumpxram(int_matrix(2, 2), "/dev/full"), stop_run);
}

}  // namespace
}  // namespace corvantile
