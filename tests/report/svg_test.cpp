#include "corvantile/report/svg.hpp"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

#include "markup.hpp"

namespace corvantile::svg {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double inf = std::numeric_limits<double>::infinity();

std::string labels(const axis& a, int about) {
  std::string s;
  for (const tick& t : ticks(a, about)) s += t.label + ' ';
  return s;
}

TEST(SvgTicks, AreRoundNumbersWithinTheAxis) {
  const struct {
    double from, to;
    bool logarithmic;
    int about;
    const char *want, *why;
  } rows[] = {
      {0, 100, false, 6, "0 20 40 60 80 100 ", "both ends belong to it"},
      {0, 0.3, false, 3, "0 0.1 0.2 0.3 ", "an end that rounding might lose"},
      {-0.5, 0.5, false, 4, "-0.4 -0.2 0 0.2 0.4 ", "no negative zero"},
      {6148, 6871, false, 4, "6200 6400 6600 6800 ", "bounds between ticks"},
      {0.002, 0.0023, false, 3, "0.002 0.0021 0.0022 0.0023 ", "as many digits as the step needs"},
      {1, 100, true, 6, "1 2 5 10 20 50 100 ", "two decades have room for 2 and 5"},
      {0.005, 2000, true, 5, "0.01 0.1 1 10 100 1000 ", "six decades have not"},
      {7, 7, false, 5, "6.4 6.6 6.8 7 7.2 7.4 7.6 ", "an axis without extent gets some"},
      {nan, inf, false, 2, "0 0.5 1 ", "no bounds"},
      {0, 1e300, false, 2, "0 5e+299 1e+300 ", "long numbers take an exponent"},
      {-3, 0, true, 5, "0.1 0.2 0.5 1 ", "nothing of it is above 0"},
  };
  for (const auto& r : rows) {
    SCOPED_TRACE(r.why);
    EXPECT_EQ(labels({"", r.from, r.to, r.logarithmic}, r.about), r.want);
  }
}

TEST(SvgText, IsAsciiThatNoParserStumblesOver) {
  const struct {
    std::string_view in, want;
  } rows[] = {{"<b a='1'>&\"", "&lt;b a=&#39;1&#39;&gt;&amp;&quot;"},
              {"\u00b5\u2032\U0001f4a1", "&#xb5;&#x2032;&#x1f4a1;"},
              {"a\xc3(\xff", "a&#xfffd;(&#xfffd;"},
              {"\xed\xa0\x80", "&#xfffd;&#xfffd;&#xfffd;"},  // half of a surrogate pair
              {"cut \xe2\x82", "cut &#xfffd;&#xfffd;"},
              {"\xc0\xbc", "&#xfffd;&#xfffd;"},  // '<' in two bytes
              {std::string_view("a\0\n\x7f", 4), "a   "}};
  for (const auto& r : rows) EXPECT_EQ(escape(r.in), r.want);
  EXPECT_EQ(number(-0.04) + ' ' + number(100) + ' ' + number(2.50, 3) + ' ' + number(nan), "0 100 2.5 -");
}

plot with(std::vector<mark> marks) {
  return {"id", "A <title>", "Words & more", {"x", 0, 10}, {"y", 0, 10}, std::move(marks)};
}

TEST(SvgPlot, CutsLinesAtTheFrameAndBreaksThemWhereASampleIsMissing) {
  const auto path = [](const std::vector<double>& y) {
    plot p = with({polyline{"s", {0, 5, 10}, y, {}, {}}});
    p.x.label = p.y.label = "";
    const std::string s = draw(p);
    const std::size_t d = s.find("<path d=\"");
    return d == std::string::npos ? "" : s.substr(d + 9, s.find('"', d + 9) - d - 9);
  };
  // The frame: 22.2 (two digits of ticks and a gap) to 350 across, 8 to 208 down.
  EXPECT_EQ(path({0, 10, 0}), "M22.2 208L186.1 8L350 208");
  EXPECT_EQ(path({5, 15, 5}), "M22.2 108L104.2 8M268.1 8L350 108") << "up through the upper edge and down again";
  EXPECT_EQ(path({-10, 20, 20}), "M76.8 208L131.5 8") << "through both edges";
  EXPECT_EQ(path({11, 12, 13}), "");
  EXPECT_EQ(path({5, nan, 5}), "");
}

TEST(SvgPlot, OfDegenerateDataIsStillAPicture) {
  const std::vector<std::vector<double>> samples{
      {}, {1}, {nan, nan}, {3, 3, 3}, {-inf, 1, inf, 2}, {0, -1, 1e300, 1e-300}};
  const std::vector<axis> axes{{"a", 0, 10}, {"a", 5, 5},       {"a", nan, inf},
                               {"a", 9, -9}, {"a", 0, 0, true}, {"a", -1e308, 1e308}};
  for (const auto& v : samples) {
    for (const axis& a : axes) {
      plot p = with({band{"b", v, v, v, "b"}, polyline{"l", v, v, "l", "end"}, polyline{"l", v, v, "", "end", true},
                     points{"p", marker::triangle, v, v, "p"}, points{"p", marker::cross, v, v, ""},
                     bars{"c", {{0, 1, v.empty() ? nan : v[0]}, {1, 2, inf}}, "c"}, arrow{"m", 0, 0, 1, 1},
                     arrow{"m", nan, 0, 1, 1}, note{"n", inf, 1}});
      p.x = p.y = a;
      expect_sound(draw(p));
      p.x = rounded(holding(a, v));
      p.equal_units = true;
      expect_sound(draw(p));
    }
  }
}

TEST(SvgPlot, KeepsEndLabelsApartAndTellsWhatItShows) {
  const std::string s =
      draw(with({polyline{"a", {0, 10}, {5, 5}, "first", "A"}, polyline{"b", {0, 10}, {5, 5}, "second", "B"}}));
  EXPECT_NE(s.find("<title>A &lt;title&gt;</title><desc>Words &amp; more</desc>"), std::string::npos);
  const auto y_of = [&](const std::string& style) {
    const std::size_t at = s.find("class=\"end " + style);
    return std::stod(s.substr(s.rfind("y=\"", at) + 3));
  };
  EXPECT_NEAR(y_of("b") - y_of("a"), 12, 0.11);
}

}  // namespace
}  // namespace corvantile::svg
