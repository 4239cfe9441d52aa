#include "corvantile/utils/text.hpp"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <vector>

#include "corvantile/utils/fixed_point.hpp"
#include "corvantile/utils/number_scanner.hpp"

namespace corvantile {

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

static std::string fields(std::string (*field)(double, std::size_t, int), std::size_t width, int digits,
                          std::initializer_list<double> values) {
  std::string s;
  for (const double v : values) s += field(v, width, digits) + "|";
  return s;
}

static std::string read_all(std::string_view text) {
  number_scanner s(text);
  std::string got;
  double v = 0;
  auto r = s.next(v);
  for (; r == number_scanner::result::number; r = s.next(v)) got += free_format(v);
  return r == number_scanner::result::bad ? got + " | " + s.problem() : got;
}

TEST(Text, Fields) {
  EXPECT_EQ(fields(fixed_field, 0, 7, {0.5, -0.02, 0, -0.0, 0.99999996, inf, -inf, nan}),
            ".5000000|-.0200000|.0000000|-.0000000|1.0000000|Inf|-Inf|NaN|");
  EXPECT_EQ(fields(fixed_field, 13, 12, {0.5, -0.0}), ".500000000000|*************|");
  EXPECT_EQ(fields(fixed_field, 14, 12, {0.5, -0.5}), "0.500000000000|-.500000000000|");
  EXPECT_EQ(fields(fixed_field, 8, 2, {inf, -inf, 0.5}), "Infinity|    -Inf|    0.50|");
  EXPECT_EQ(fields(fixed_field, 2, 1, {10, nan, 0.5}), "**|**|.5|");
  EXPECT_EQ(fixed_field(-0.5, 0, 0) + fixed_field(999999.95, 0, 15), "-0.999999.949999999953434") << "exact digits";
  EXPECT_EQ(fields(general_field, 12, 7, {0.001, 0.5, 0, -0.0, -0.5, -1e-9, nan}),
            ".1000000E-02|.5000000    |0.000000    |-.000000    |************|************|         NaN|");
  EXPECT_EQ(fields(general_field, 12, 7, {0.099999999, 9.9999999, 9999999, 9999999.5, 1e100, 1e-100}),
            ".1000000    |10.00000    |9999999.    |.1000000E+08|.1000000+101|.1000000E-99|");
  EXPECT_EQ(fields(general_field, 10, 4, {0, 0.02, -0.02, 0.2, -0.2, -1e300}),
            " 0.000    |0.2000E-01|-.2000E-01|0.2000    |-.2000    |-.1000+301|");
  EXPECT_EQ(integer_field(-45, 5) + integer_field(1234, 3) + integer_field(0), "  -45***0");
  EXPECT_EQ(free_format(0.1) + free_format(-inf), " 0.1 -Infinity");
  EXPECT_EQ(in_quotes(trim(cut("a\n  cd", 4))) + in_quotes(std::string(50, 'x')),
            "'a?''" + std::string(40, 'x') + "...'");
}

TEST(Text, WritesTheDecimalsOfTheStandardLibrary) {
  std::mt19937_64 bits(11);
  std::vector<double> numbers{0, 0.99999999999949996, 1e-30, 5e-324, 1e300};
  for (const double units : {1.0, 3.0, 12345.0, 0x1p31, 0x1p52 + 1, 0x1p53 - 1})  // halves at every digit: ties
    for (int e = -70; e <= 12; ++e) numbers.push_back(std::ldexp(units, e));
  for (const double edge : {0x1p64, 0x1p63, 1e19})
    for (int d = 0; d <= 19; ++d) numbers.push_back(edge / std::pow(10, d));
  for (int i = 0; i < 1000; ++i) {
    numbers.push_back(static_cast<double>(bits()) * 0x1p-64);
    numbers.push_back(std::bit_cast<double>(bits() & ~(std::uint64_t{1} << 62)));  // below 2
  }
  for (const double v : numbers) {
    for (const double x : {v, -v, std::nextafter(v, 0.0), std::nextafter(v, 10 * v)}) {
      for (int d = 0; d <= 20; ++d) {
        std::array<char, 400> expected;
        std::array<char, 400> got;
        const char* expected_end =
            std::to_chars(expected.data(), expected.data() + expected.size(), x, std::chars_format::fixed, d).ptr;
        const char* got_end = write_fixed(got.data(), got.data() + got.size(), x, d);
        ASSERT_EQ(std::string_view(got.data(), got_end), std::string_view(expected.data(), expected_end))
            << free_format(x) << d;
      }
    }
  }
}

TEST(Text, ReadsRealsInEverySpellingAndItsOwnBitForBit) {
  const std::string zeros(400, '0');
  EXPECT_EQ(read_all("1000 +1000. 1e3 .1e+4 1.0d3 1D+03 1q3 1.+3 10000000-4"), read_all("9*1000"));
  EXPECT_EQ(read_all("inf 1e999 1d999 1e99999999999999999999 1" + zeros), read_all("5*Infinity"));
  EXPECT_EQ(read_all("1e-999 0.00001e-99999999999999999999 -1d999 0." + zeros + "1"), " 0 0 -Infinity 0");
  EXPECT_EQ(read_all("1" + zeros + "d-400 NaN"), " 1 NaN") << "longer than the buffer for unusual exponents";
  for (const char* s : {"", "+", "+-1", "++1", "--1", ".", "e5", "1e", "1d", "1d+", "1e5d3", "1d2.5", "inf+3", "infx",
                        "0x1p3", "1.2.3", "1_8", " 1", "1 "})
    EXPECT_EQ(parse_real(s), std::nullopt) << s;
  std::mt19937_64 bits(7);
  for (int i = 0; i < 20000; ++i) {
    const auto v = std::bit_cast<double>(bits());
    if (v != v) continue;
    ASSERT_EQ(parse_real(free_format(v).substr(1)), v);
  }
}

TEST(NumberScanner, ListsLinesAndPositions) {
  EXPECT_EQ(read_all("\xEF\xBB\xBF 1 2,3\t4\r\n5 ,\n 6,"), " 1 2 3 4 5 6") << "every separator";
  EXPECT_EQ(read_all("3*0.5 1*2/3 x"), " 0.5 0.5 0.5 2") << "repeat counts; a slash ends the list";
  EXPECT_EQ(read_all("1\n2\n3x 4"), " 1 2 | line 3: expected a number, found '3x'");
  EXPECT_EQ(read_all("1,\n,2"), " 1 | line 2: expected a number, found a comma without a value before it");
  for (const std::string s : {"2*", "0*1", "-2*1", "2*3*1", "99999999999999999999*1"})
    EXPECT_EQ(read_all(s), " | line 1: expected a number, found '" + s + "'") << "not a repeat count";

  using enum number_scanner::result;
  number_scanner s("; made by hand\r\n17 0.5 rest\n\n2000000000*1");
  std::int64_t n = 0;
  double v = 0;
  EXPECT_EQ(s.next_line(), "; made by hand");
  EXPECT_EQ(s.next(n), number);
  EXPECT_EQ(n, 17);
  EXPECT_EQ(s.next(n), bad) << "0.5 is not an integer";
  EXPECT_EQ(s.problem("an integer"), "line 2: expected an integer, found '0.5'");
  EXPECT_EQ(s.next(v), number);
  EXPECT_EQ(v, 0.5) << "but still a number";
  EXPECT_EQ(s.next_line(), " rest");
  EXPECT_EQ(s.next(v), number);
  EXPECT_EQ(s.next_line(), std::nullopt);
  EXPECT_EQ(s.next(v), end) << "repeats end with their line";
  EXPECT_EQ(s.problem(), "line 4: expected a number, found the end");
}

}  // namespace corvantile
