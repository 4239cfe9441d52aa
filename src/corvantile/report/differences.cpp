// Section 5: colour differences along seven ramps and for the usual test patches.

#include <algorithm>
#include <cmath>
#include <numeric>

#include "corvantile/report/html.hpp"
#include "corvantile/report/sections.hpp"
#include "corvantile/report/series.hpp"
#include "corvantile/utils/array_helpers.hpp"

namespace corvantile {
namespace {

double mean_of(const std::vector<double>& v) {
  return v.empty() ? unknown : std::accumulate(v.begin(), v.end(), 0.0) / static_cast<double>(v.size());
}

// One scale for all: what the corrected display needs, and of the display before it as much as fits.
svg::axis difference_axis(const report_data& data) {
  svg::axis y{"", 0, 3};
  for (const ramp_differences& r : data.figures.ramps) y = holding(y, r.after);
  if (data.measured)
    for (const verified_ramp& r : data.measured->ramps) y = holding(y, r.difference);
  y.to = std::min(y.to, 30.0);
  const double after = y.to;
  for (const ramp_differences& r : data.figures.ramps) y = holding(y, r.before);
  y.to = std::min(y.to, 2.5 * after);
  return svg::rounded(y, 3);
}

svg::plot multiple(const report_data& data, std::size_t i, const svg::axis& scale) {
  const std::string name = test_ramps[i].name;
  const ramp_differences& r = data.figures.ramps[i];
  svg::plot p{"ramp-" + name,
              "Colour differences along the " + name + " ramp",
              "CIEDE2000 over the drive, before and after the correction; a line marks a difference of 1.",
              {"", 0, 100},
              scale};
  p.y.label = name;
  p.width = 210;
  p.height = 90;
  p.x_ticks = 2;
  p.y_ticks = 3;
  p.marks.emplace_back(svg::polyline{"limit", {0, 100}, {1, 1}, {}, {}});
  p.marks.emplace_back(svg::polyline{"before", in_percent(r.drive), r.before, {}, {}});
  p.marks.emplace_back(svg::polyline{"after", in_percent(r.drive), r.after, {}, {}});
  if (data.measured) {
    const verified_ramp& m = data.measured->ramps[i];
    p.marks.emplace_back(svg::points{"measured", svg::marker::circle, in_percent(m.drive), m.difference, {}});
  }
  return p;
}

std::string multiples(const report_data& data) {
  std::string out = "<div class=\"multiples\">\n";
  for (const svg::plot& p : difference_plots(data)) out += svg::draw(p);
  return out + "</div>\n" +
         html::paragraph(
             "&Delta;E<sub>00</sub> over the drive in percent: solid after, dotted before (cut off where it "
             "leaves the scale), circles as measured if that was done; the level line marks 1.",
             "caption");
}

std::string ramp_table(const job_figures& f) {
  std::vector<html::row> rows;
  for (std::size_t i = 0; i < test_ramps.size(); ++i) {
    const ramp_differences& r = f.ramps[i];
    rows.push_back({html::text(test_ramps[i].name), html::fixed(mean_of(r.before), 2),
                    html::fixed(mean_of(r.after), 2), html::fixed(largest(r.before), 2),
                    html::fixed(largest(r.after), 2)});
  }
  return html::table("Differences along the ramps, &Delta;E<sub>00</sub>",
                     {{"ramp", false}, {"mean before"}, {"mean after"}, {"largest before"}, {"largest after"}}, rows,
                     "compact");
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
std::string swatch(const patch_figures& p, std::size_t index) {
  const auto from = [](const char* x, const char* width, const vec3& drive) {
    return html::joined(
        {R"(<rect x=")", x, R"(" width=")", width, R"(" height="49" fill=")", css_colour(drive), R"("/>)"});
  };
  return html::joined({R"(<svg class="swatch" id="patch-)", std::to_string(index),
                       R"(" viewBox="0 0 100 48" role="img"><title>)", html::text(p.name),
                       "</title><desc>The colour asked for on the left, the predicted one on the right.</desc>",
                       from("0", "100", p.asked), from("50", "50", p.shown), "</svg>"});
}

std::string patch_list(const job_figures& d) {
  if (d.patches.empty()) return {};
  std::string out = "<h3>The usual test patches</h3>\n<ol class=\"patches\">\n";
  for (std::size_t i = 0; i < d.patches.size(); ++i) {
    const patch_figures& p = d.patches[i];
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

plots difference_plots(const report_data& data) {
  const svg::axis scale = difference_axis(data);
  plots all;
  for (std::size_t i = 0; i < test_ramps.size(); ++i) all.push_back(multiple(data, i, scale));
  return all;
}

std::string difference_section(const report_data& data) {
  return html::section(
      "differences", "Colour differences",
      "Differences between the target and the display, in CIEDE2000 against the white that the target "
      "shows. About 1 is the least that can be seen side by side; 3 is seen at once.",
      multiples(data) + ramp_table(data.figures) + patch_list(data.figures));
}

}  // namespace corvantile
