#pragma once
// Plots as inline SVG: axes with ticks, a legend, and marks given as plain records.
//
// A plot brings neither colours nor fonts: every mark carries a class that the page's style sheet dresses for light,
// dark and paper (style.cpp). Lengths on paper are in user units of a view box that is 360 wide unless told
// otherwise, about a pixel each. What is not finite, or lies outside the axes, leaves no trace in the text: lines are
// cut at the frame and break where a sample is missing.

#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace corvantile::svg {

/// `utf8` as ASCII for element content and quoted attributes alike: & < > " ' as entities, other characters beyond
/// ASCII as numeric references, bytes that are not UTF-8 as the replacement character, controls as blanks.
std::string escape(std::string_view utf8);

/// `v` with at most `decimals` digits after the point, trailing zeros dropped. Not finite: "-".
std::string number(double v, int decimals = 1);

struct axis {
  std::string label;
  double from = 0;
  double to = 1;
  bool logarithmic = false;
};

/// Whether `v` is a number that the axis can show, if need be after widening.
bool has_place(const axis& a, double v);

/// Where `v` lies between the ends of the axis: 0 at `from`, 1 at `to`.
double share_of(const axis& a, double v);

/// The axis with bounds that rise, are finite and, on a logarithmic one, above 0: every value between them has a
/// place.
axis drawable(axis a);

/// The axis widened to hold `values` as well; what has no place on it (not finite, not above 0 on a logarithmic one)
/// does not count.
axis holding(axis a, const std::vector<double>& values);

/// The drawable axis, a linear one widened to its next ticks at both ends.
axis rounded(axis a, int about = 5);

struct tick {
  double at;
  std::string label;
};

/// Ticks within the axis, rising: steps of 1, 2 or 5 times a power of ten, some `about` of them; on a logarithmic
/// axis of more than a decade the powers of ten, with 2 and 5 times these where there is room.
std::vector<tick> ticks(const axis& a, int about = 5);

// ---- Marks. `style` is the class; `label`, where there is one, is the mark's entry in the legend. ----

struct polyline {
  std::string style;
  std::vector<double> x, y;
  std::string label;
  std::string end_label;  ///< written behind the last sample; several keep clear of each other
  bool closed = false;
};
/// The area between two curves over the same abscissae.
struct band {
  std::string style;
  std::vector<double> x, low, high;
  std::string label;
};
enum class marker { circle, square, triangle, diamond, cross };
struct points {
  std::string style;
  marker shape = marker::circle;
  std::vector<double> x, y;
  std::string label;
};
struct bar {
  double from, to, height;
};
struct bars {
  std::string style;
  std::vector<bar> bars;
  std::string label;
};
struct arrow {
  std::string style;
  double x0, y0, x1, y1;
};
enum class anchor { start, middle, end };
struct note {
  std::string text;
  double x, y;
  double dx = 0, dy = 0;  ///< away from (x, y) on paper, to the right and down
  svg::anchor anchor = svg::anchor::start;
  std::string style = "note";
};
using mark = std::variant<band, bars, polyline, points, arrow, note>;

struct plot {
  std::string id;           ///< unique on its page, a valid name
  std::string title;        ///< for screen readers, as is
  std::string description;  ///< what a reader who cannot see the plot should know
  axis x, y;
  std::vector<mark> marks{};  ///< drawn in this order
  double width = 360;
  double height = 200;       ///< of the frame within the axes
  bool equal_units = false;  ///< one unit is as long on both axes; `height` then follows from the width
  int x_ticks = 6, y_ticks = 5;
};

/// The plot as one `svg` element of a page.
std::string draw(const plot& p);

/// The plot as a file of its own, with the style sheet that it needs.
std::string draw_alone(const plot& p, std::string_view style_sheet);

}  // namespace corvantile::svg
