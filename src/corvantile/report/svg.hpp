#pragma once
// Plots as inline SVG: axes with ticks, a legend, and marks given as plain records.
//
// Plots have no colours or fonts: every mark has a class, and the style sheet of the page (style.cpp) does the rest.
// Lengths are in units of a view box that is 360 wide by default, about a pixel each. Values that are not finite or
// outside the axes are not written: lines are cut at the frame and interrupted at missing samples.

#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace corvantile::svg {

/// `utf8` as ASCII for element content and quoted attributes: & < > " ' become entities, characters beyond ASCII
/// numeric references, bytes that are not UTF-8 the replacement character, and control characters blanks.
std::string escape(std::string_view utf8);

/// `v` with at most `decimals` digits after the point, without trailing zeros; "-" if it is not finite.
std::string number(double v, int decimals = 1);

struct axis {
  std::string label;
  double from = 0;
  double to = 1;
  bool logarithmic = false;
};

/// Whether `v` can be on such an axis, if it is wide enough: finite, and above 0 if logarithmic.
bool has_place(const axis& a, double v);

/// The position of `v` on the axis: 0 at `from`, 1 at `to`.
double share_of(const axis& a, double v);

/// The axis with usable bounds: rising, finite, and above 0 if logarithmic.
axis drawable(axis a);

/// The axis widened to hold `values` as well, except those without a place on it.
axis holding(axis a, const std::vector<double>& values);

/// The drawable axis; a linear one is widened to the next tick at both ends.
axis rounded(axis a, int about = 5);

struct tick {
  double at;
  std::string label;
};

/// Some `about` ticks within the axis, rising, in steps of 1, 2 or 5 times a power of ten. A logarithmic axis has the
/// powers of ten and, if there is room, 2 and 5 times these.
std::vector<tick> ticks(const axis& a, int about = 5);

// ---- Marks. `style` is the class; `label`, if not empty, is the entry in the legend. ----

struct polyline {
  std::string style;
  std::vector<double> x, y;
  std::string label;
  std::string end_label;  ///< written after the last sample; several do not overlap
  bool closed = false;
};
/// The area between two curves with the same x.
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
  double dx = 0, dy = 0;  ///< offset from (x, y) in units of the view box, right and down
  svg::anchor anchor = svg::anchor::start;
  std::string style = "note";
};
using mark = std::variant<band, bars, polyline, points, arrow, note>;

struct plot {
  std::string id;           ///< a valid name, unique on the page
  std::string title;        ///< for screen readers
  std::string description;  ///< what readers who cannot see the plot should know
  axis x, y;
  std::vector<mark> marks{};  ///< drawn in this order
  double width = 360;
  double height = 200;       ///< of the frame inside the axes
  bool equal_units = false;  ///< units have the same length on both axes, and the width determines the height
  int x_ticks = 6, y_ticks = 5;
};

/// The plot as an `svg` element of a page.
std::string draw(const plot& p);

/// The plot as a separate file, with its style sheet.
std::string draw_alone(const plot& p, std::string_view style_sheet);

}  // namespace corvantile::svg
