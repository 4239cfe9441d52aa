// Section 5: colour differences along seven ramps and for the usual test patches.

#include <algorithm>
#include <cmath>
#include <numeric>

#include "corvantile/report/html.hpp"
#include "corvantile/report/sections.hpp"
#include "corvantile/report/series.hpp"

namespace corvantile {
namespace {

double largest(const std::vector<double>& v) {
  double m = unknown;
  for (const double e : v) m = std::fmax(m, e);
  return m;
}

double mean_of(const std::vector<double>& v) {
  return v.empty() ? unknown : std::accumulate(v.begin(), v.end(), 0.0) / static_cast<double>(v.size());
}

// One scale for all: what the corrected display needs, and of the display before it as much as fits.
svg::axis difference_axis(const difference_record& d) {
  svg::axis y{"", 0, 3};
  for (const ramp_record& r : d.ramps) y = holding(holding(y, r.after), r.measured);
  y.to = std::min(y.to, 30.0);
  const double after = y.to;
  for (const ramp_record& r : d.ramps) y = holding(y, r.before);
  y.to = std::min(y.to, 2.5 * after);
  return svg::rounded(y, 3);
}

svg::plot multiple(const ramp_record& r, const svg::axis& scale) {
  svg::plot p{"ramp-" + r.name,
              "Colour differences along the " + r.name + " ramp",
              "CIEDE2000 over the drive, before and after the correction; a line marks a difference of 1.",
              {"", 0, 100},
              scale};
  p.y.label = r.name;
  p.width = 210;
  p.height = 90;
  p.x_ticks = 2;
  p.y_ticks = 3;
  p.marks.emplace_back(svg::polyline{"limit", {0, 100}, {1, 1}, {}, {}});
  p.marks.emplace_back(svg::polyline{"before", in_percent(r.drive), r.before, {}, {}});
  p.marks.emplace_back(svg::polyline{"after", in_percent(r.drive), r.after, {}, {}});
  p.marks.emplace_back(svg::points{"measured", svg::marker::circle, in_percent(r.measured_drive), r.measured, {}});
  return p;
}

std::string multiples(const difference_record& d) {
  const svg::axis scale = difference_axis(d);
  std::string out = "<div class=\"multiples\">\n";
  for (const ramp_record& r : d.ramps) out += svg::draw(multiple(r, scale));
  return out + "</div>\n" +
         html::paragraph(
             "&Delta;E<sub>00</sub> over the drive in percent: solid after, dotted before (cut off where it "
             "leaves the scale), circles as measured where that was done; the level line marks 1.",
             "caption");
}

std::string ramp_table(const difference_record& d) {
  const bool own = std::ranges::any_of(d.ramps, [](const ramp_record& r) { return std::isfinite(r.program_max); });
  std::vector<html::column> columns{
      {"ramp", false}, {"mean before"}, {"mean after"}, {"largest before"}, {"largest after"}};
  if (own) columns.push_back({"program&rsquo;s own largest"});
  std::vector<html::row> rows;
  for (const ramp_record& r : d.ramps) {
    rows.push_back({html::text(r.name), html::fixed(mean_of(r.before), 2), html::fixed(mean_of(r.after), 2),
                    html::fixed(largest(r.before), 2), html::fixed(largest(r.after), 2),
                    html::fixed(r.program_max, 2)});
  }
  return html::table("Differences along the ramps, &Delta;E<sub>00</sub>", columns, rows, "compact") +
         html::paragraph(
             own ? "The program&rsquo;s own figures, as its verbose report prints them, take the column sums "
                   "of the target&rsquo;s matrix for the reference white and leave the gray table out; the "
                   "other columns take the white that the target really shows."
                 : "",
             "aside");
}

std::string css_colour(const vec3& drive) {
  std::string out = "rgb(";
  for (std::size_t c = 0; c < 3; ++c) {
    const double v = std::isfinite(drive[c]) ? std::clamp(drive[c], 0.0, 1.0) : 0.0;
    if (c > 0) out += ',';
    out += svg::number(255 * v, 0);
  }
  return out + ")";
}

// The colour asked for on the left, the predicted one on the right.
std::string swatch(const patch_record& p, std::size_t index) {
  const auto from = [](const char* x, const char* width, const vec3& drive) {
    return html::joined(
        {R"(<rect x=")", x, R"(" width=")", width, R"(" height="49" fill=")", css_colour(drive), R"("/>)"});
  };
  return html::joined({R"(<svg class="swatch" id="patch-)", std::to_string(index),
                       R"(" viewBox="0 0 100 48" role="img"><title>)", html::text(p.name),
                       "</title><desc>The colour asked for on the left, the predicted one on the right.</desc>",
                       from("0", "100", p.asked), from("50", "50", p.shown), "</svg>"});
}

std::string patch_list(const difference_record& d) {
  if (d.patches.empty()) return {};
  std::string out = "<h3>The usual test patches</h3>\n<ol class=\"patches\">\n";
  for (std::size_t i = 0; i < d.patches.size(); ++i) {
    const patch_record& p = d.patches[i];
    out += html::joined({"<li>", swatch(p, i), "<b>", html::fixed(p.after, 2), "</b> <span class=\"was\">was ",
                         html::fixed(p.before, 2), "</span><span class=\"name\">", html::text(p.name),
                         "</span></li>\n"});
  }
  return out + "</ol>\n" +
         html::paragraph(
             "&Delta;E<sub>00</sub> after the correction, and before. Each field shows the colour asked for "
             "on the left and the predicted one on the right, as a display exactly like the target would "
             "show them.",
             "caption");
}

}  // namespace

std::string difference_section(const report_data& data) {
  const difference_record& d = data.differences;
  return html::section(
      "differences", "Colour differences",
      "Differences between the target and the display, in CIEDE2000 against the white that the target "
      "shows. About 1 is the least that can be seen side by side; 3 is seen at once.",
      multiples(d) + ramp_table(d) + patch_list(d));
}

}  // namespace corvantile
