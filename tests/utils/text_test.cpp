#include "utils/text.hpp"

#include <bit>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <vector>

namespace corvantile {
namespace {

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

TEST(Text, FixedFields) {
  const struct {
    double v;
    std::size_t width;
    int digits;
    const char* want;
  } rows[] = {
      {0.5, 0, 7, ".5000000"},
      {-0.02, 0, 7, "-.0200000"},
      {0, 0, 7, ".0000000"},
      {-0.0, 0, 7, "-.0000000"},
      {-1e-8, 0, 7, "-.0000000"},
      {0.99999996, 0, 7, "1.0000000"},
      {0, 0, 15, ".000000000000000"},
      {0, 0, 0, "0."},
      {-0.5, 0, 0, "-0."},
      {2.2, 0, 15, "2.200000000000000"},
      {999999.95, 0, 15, "999999.949999999953434"},
      {0.5, 13, 12, ".500000000000"},
      {0.5, 14, 12, "0.500000000000"},
      {0.5, 15, 12, " 0.500000000000"},
      {-0.5, 14, 12, "-.500000000000"},
      {-0.0, 13, 12, "*************"},
      {10, 3, 1, "***"},
      {-0.04, 3, 1, "-.0"},
      {inf, 0, 7, "Inf"},
      {-inf, 0, 7, "-Inf"},
      {nan, 0, 7, "NaN"},
      {inf, 8, 2, "Infinity"},
      {inf, 7, 2, "    Inf"},
      {-inf, 8, 2, "    -Inf"},
      {-inf, 9, 2, "-Infinity"},
      {-inf, 3, 1, "***"},
      {nan, 2, 1, "**"},
      {1e22, 0, 1, "10000000000000000000000.0"},
  };
  for (const auto& r : rows) EXPECT_EQ(fixed_field(r.v, r.width, r.digits), r.want);
  EXPECT_EQ(fixed_field(-std::numeric_limits<double>::max(), 0, 15).size(), 1u + 309 + 1 + 15);
}

TEST(Text, GeneralFields) {
  const struct {
    double v;
    std::size_t width;
    int digits;
    const char* want;
  } rows[] = {
      {0.001, 12, 7, ".1000000E-02"},     {0.5, 12, 7, ".5000000    "},     {0, 12, 7, "0.000000    "},
      {-0.5, 12, 7, "************"},      {-1, 12, 7, "************"},      {-1e-9, 12, 7, "************"},
      {-0.0, 12, 7, "-.000000    "},      {10, 12, 7, "10.00000    "},      {0.099999999, 12, 7, ".1000000    "},
      {9.9999999, 12, 7, "10.00000    "}, {9999999, 12, 7, "9999999.    "}, {9999999.5, 12, 7, ".1000000E+08"},
      {1e100, 12, 7, ".1000000+101"},     {1e-100, 12, 7, ".1000000E-99"},  {5e-324, 12, 7, ".4940656-323"},
      {inf, 12, 7, "    Infinity"},       {-inf, 12, 7, "   -Infinity"},    {nan, 12, 7, "         NaN"},
      {0, 10, 4, " 0.000    "},           {0.02, 10, 4, "0.2000E-01"},      {0.2, 10, 4, "0.2000    "},
      {-0.02, 10, 4, "-.2000E-01"},       {-0.2, 10, 4, "-.2000    "},      {1e5, 10, 4, "0.1000E+06"},
      {-1e300, 10, 4, "-.1000+301"},
  };
  for (const auto& r : rows) EXPECT_EQ(general_field(r.v, r.width, r.digits), r.want) << r.v;
}

TEST(Text, IntegersFreeFormatAndPadding) {
  EXPECT_EQ(integer_field(0), "0");
  EXPECT_EQ(integer_field(-45, 5), "  -45");
  EXPECT_EQ(integer_field(1234, 3), "***");
  EXPECT_EQ(integer_field(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
  EXPECT_EQ(free_format(0.1) + free_format(-inf) + free_format(nan), " 0.1 -Infinity NaN");
  EXPECT_EQ(trim(cut("ab  cd", 4)), "ab");
  EXPECT_EQ(trim("   "), "");
  EXPECT_EQ(in_quotes("a\n\x01" + std::string(50, 'x')), "'a??" + std::string(37, 'x') + "...'");
}

TEST(Text, FreeFormatReadsBackBitForBit) {
  std::mt19937_64 bits(7);
  for (int i = 0; i < 20000; ++i) {
    const auto v = std::bit_cast<double>(bits());
    if (std::isnan(v)) continue;
    ASSERT_EQ(parse_real(free_format(v).substr(1)), v);
  }
}

TEST(Text, ParsesRealsInEverySpelling) {
  const struct {
    const char* s;
    std::optional<double> want;
  } rows[] = {
      {"1.5", 1.5},
      {"+1.5", 1.5},
      {"-.5", -0.5},
      {"5.", 5},
      {"1e-3", 1e-3},
      {"1.0d-3", 1e-3},
      {"1D+03", 1e3},
      {"1q3", 1e3},
      {"1.5+3", 1500},
      {"1-3", 1e-3},
      {"inf", inf},
      {"-Infinity", -inf},
      {"+INF", inf},
      {"1e999", inf},
      {"-1d999", -inf},
      {"1e-999", 0},
      {"0.00001e-99999999999999999999", 0},
      {"1e99999999999999999999", inf},
      {"", {}},
      {"+", {}},
      {"+-1", {}},
      {"++1", {}},
      {"--1", {}},
      {".", {}},
      {"e5", {}},
      {"1e", {}},
      {"1d", {}},
      {"1d+", {}},
      {"1e5d3", {}},
      {"1d2.5", {}},
      {"inf+3", {}},
      {"infx", {}},
      {"0x1p3", {}},
      {"1.2.3", {}},
      {"1_8", {}},
      {" 1", {}},
      {"1 ", {}},
  };
  for (const auto& r : rows) EXPECT_EQ(parse_real(r.s), r.want) << r.s;
  EXPECT_TRUE(std::isnan(parse_real("NaN").value_or(0)));
  EXPECT_EQ(parse_real(std::string(400, '9')), inf) << "large without an exponent";
  EXPECT_EQ(parse_real("0." + std::string(400, '0') + "1"), 0) << "small without an exponent";
  EXPECT_EQ(parse_real("1" + std::string(400, '0') + "d-400"), 1) << "longer than the buffer for odd exponents";
}

std::string read_all(std::string_view text) {
  number_scanner s(text);
  std::string got;
  double v = 0;
  for (;;) {
    switch (s.next(v)) {
      case number_scanner::result::number:
        got += free_format(v);
        break;
      case number_scanner::result::end:
        return got;
      case number_scanner::result::bad:
        return got + " | " + s.problem();
    }
  }
}

TEST(NumberScanner, FreeFormat) {
  const struct {
    const char* text;
    const char* want;
    const char* why;
  } rows[] = {
      {"", "", "nothing"},
      {" \t\r\n \n", "", "only blanks"},
      {"1 2,3\t4\r\n5 ,\n 6", " 1 2 3 4 5 6", "every separator; a comma may stand apart"},
      {"\xEF\xBB\xBF"
       "1",
       " 1", "byte order mark"},
      {"3*0.5 2", " 0.5 0.5 0.5 2", "repeat count"},
      {"1 2/3 x", " 1 2", "a slash ends the list"},
      {"1,2,", " 1 2", "a last comma separates from nothing"},
      {"1\n2\n3x 4", " 1 2 | line 3: expected a number, found '3x'", "bad text"},
      {"1,\n,2", " 1 | line 2: expected a number, found a comma without a value before it", "left out"},
      {",1", " | line 1: expected a number, found a comma without a value before it", "left out at the start"},
      {"2* 1", " | line 1: expected a number, found '2*'", "nothing repeated"},
      {"0*1", " | line 1: expected a number, found '0*1'", "repeat count below 1"},
      {"-2*1", " | line 1: expected a number, found '-2*1'", "negative repeat count"},
      {"2*3*1", " | line 1: expected a number, found '2*3*1'", "two repeat counts"},
      {"99999999999999999999*1", " | line 1: expected a number, found '99999999999999999999*1'", "no such count"},
  };
  for (const auto& r : rows) EXPECT_EQ(read_all(r.text), r.want) << r.why;
}

TEST(NumberScanner, LinesIntegersAndPositions) {
  number_scanner s("; made by hand\r\n17 0.5 rest\n\n2000000000*1");
  std::int64_t n = 0;
  double v = 0;
  EXPECT_EQ(s.next_line(), "; made by hand");
  EXPECT_EQ(s.next(n), number_scanner::result::number);
  EXPECT_EQ(n, 17);
  EXPECT_EQ(s.next(n), number_scanner::result::bad) << "0.5 is no integer";
  EXPECT_EQ(s.problem("an integer"), "line 2: expected an integer, found '0.5'");
  EXPECT_EQ(s.next(v), number_scanner::result::number) << "but still a number";
  EXPECT_EQ(s.next_line(), " rest");
  EXPECT_EQ(s.next(v), number_scanner::result::number);
  EXPECT_EQ(s.line(), 4u);
  EXPECT_EQ(s.next_line(), std::nullopt);
  EXPECT_EQ(s.next(v), number_scanner::result::end) << "what a repeat count still holds goes with its line";
  EXPECT_EQ(s.problem(), "line 4: expected a number, found the end");
}

TEST(ReadFile, WholeFilesOnly) {
  const auto dir = std::filesystem::path(testing::TempDir());
  const std::string name = (dir / "read_file_test.txt").string();
  const std::string content(100000, 'x');
  std::ofstream(name) << content;
  EXPECT_EQ(read_file(name + "   "), content) << "trailing blanks of the name do not count";
  EXPECT_EQ(read_file((dir / "no_such_file").string()), std::nullopt);
  EXPECT_EQ(read_file(dir.string()), std::nullopt) << "a directory";
  std::filesystem::remove(name);
}

}  // namespace
}  // namespace corvantile
