// Section 2: what colour the grays have. Colour temperature alone hides green and magenta, so their distance from the
// white asked for stands beside it.

#include <algorithm>

#include "corvantile/report/html.hpp"
#include "corvantile/report/sections.hpp"
#include "corvantile/report/series.hpp"

namespace corvantile {
namespace {

using series_of = std::vector<double> gray_curve::*;

const gray_curve* measured_grays(const report_data& data) { return data.measured ? &data.measured->gray : nullptr; }

svg::polyline line(const gray_curve& c, series_of values, const char* style, const std::string& label) {
  return {style, in_percent(c.drive), c.*values, label, {}};
}

// Before, after, asked for (dashes that show above a line on which they lie), and the samples that were measured.
void add_states(svg::plot& p, const report_data& data, series_of values) {
  const gray_figures& g = data.figures.gray;
  p.marks.emplace_back(line(g.before, values, "before", before_name));
  p.marks.emplace_back(line(g.after, values, "after", after_name));
  p.marks.emplace_back(line(g.asked, values, "asked", asked_name));
  if (const gray_curve* m = measured_grays(data))
    p.marks.emplace_back(
        svg::points{"measured", svg::marker::circle, in_percent(m->drive), m->*values, measured_name});
}

svg::axis drive_axis(double to = 100) { return {"gray drive, %", 0, to}; }

svg::plot temperature(const report_data& data) {
  const gray_figures& g = data.figures.gray;
  // Near black the dark light decides, and a colour temperature means little: it does not stretch the axis.
  svg::axis y{"colour temperature, K", g.cct_low, g.cct_high};
  for (const gray_curve* c : {&g.asked, &g.before, &g.after}) y = holding(y, within(c->drive, c->cct, 0.1));
  if (const gray_curve* m = measured_grays(data)) y = holding(y, within(m->drive, m->cct, 0.1));
  y.from = std::max(y.from, 1500.0);
  y.to = std::min(y.to, 20000.0);
  svg::plot p{
      "gray-cct", "Colour temperature of the grays",
      "Correlated colour temperature over the gray drive, before and after the correction, with the line asked "
      "for and the band of temperatures within the tolerance.",
      drive_axis(), svg::rounded(y)};
  p.marks.emplace_back(
      svg::band{"tolerance", {0, 100}, {g.cct_low, g.cct_low}, {g.cct_high, g.cct_high}, "tolerance"});
  add_states(p, data, &gray_curve::cct);
  return p;
}

svg::plot distance(const report_data& data, double upto) {
  const gray_figures& g = data.figures.gray;
  const bool dark = upto < 1;
  svg::axis y{"distance from the white asked for, u'v'", 0, 2 * g.tolerance};
  for (const gray_curve* c : {&g.asked, &g.before, &g.after}) {
    y = holding(y, within(c->drive, c->distance, dark ? 0 : 0.1, upto));
  }
  svg::plot p{
      dark ? "gray-dark" : "gray-distance",
      dark ? "Distance of the darkest grays from the white asked for"
           : "Distance of the grays from the white asked for",
      "Distance in CIE 1976 u'v' over the gray drive, before and after the correction, with what is asked for "
      "and the tolerance.",
      drive_axis(100 * upto), svg::rounded(y)};
  p.marks.emplace_back(svg::band{"tolerance", {0, 100 * upto}, {0, 0}, {g.tolerance, g.tolerance}, "tolerance"});
  add_states(p, data, &gray_curve::distance);
  return p;
}

svg::axis balance_axis(const gray_figures& g) {
  svg::axis y{"red, green and blue light, %", 95, 105};
  for (const gray_curve* c : {&g.before, &g.after}) {
    for (const auto& channel : c->balance) y = holding(y, within(c->drive, channel, 0.05));
  }
  y.from = std::max(y.from, 0.0);
  y.to = std::min(y.to, 200.0);
  return svg::rounded(y);
}

svg::plot balance(const gray_figures& g, const gray_curve& c, const char* id, const std::string& state) {
  svg::plot p{
      id, "Balance of red, green and blue in the grays, " + state,
      "Amounts of the target's red, green and blue light in every gray, in percent of what the white asked for "
      "has at the same luminance. 100 for all three is neutral.",
      drive_axis(), balance_axis(g)};
  p.marks.emplace_back(svg::polyline{"asked", {0, 100}, {100, 100}, {}, {}});
  const char* const styles[] = {"red", "green", "blue"};
  const char* const letters[] = {"R", "G", "B"};
  for (std::size_t k = 0; k < 3; ++k) {
    p.marks.emplace_back(svg::polyline{styles[k], in_percent(c.drive), c.balance[k], styles[k], letters[k]});
  }
  return p;
}

}  // namespace

plots gray_axis_plots(const report_data& data) {
  const gray_figures& g = data.figures.gray;
  plots all{temperature(data), distance(data, 1), distance(data, 0.15),
            balance(g, g.before, "balance-before", "before"), balance(g, g.after, "balance-after", "after")};
  if (const gray_curve* m = measured_grays(data)) all.push_back(balance(g, *m, "balance-measured", "measured"));
  return all;
}

std::string gray_axis_section(const report_data& data) {
  const std::string captions[] = {
      "Along the locus of white lights: too blue above the line, too yellow below.",
      "In any direction, green and magenta included. Differences below the tolerance of " +
          html::fixed(data.figures.gray.tolerance, 3) + " are hard to see even side by side.",
      "The dark end, enlarged. Here the display&rsquo;s own dark light takes over; no table can remove it.",
      "Before the correction.",
      "After it, on the same scale.",
      "As measured."};
  std::string pictures;
  const plots all = gray_axis_plots(data);
  for (std::size_t i = 0; i < all.size(); ++i) pictures += html::figure(svg::draw(all[i]), captions[i]);
  return html::section("gray", "Gray axis",
                       "Every gray should have the colour of the white asked for. Two pictures say so: the colour "
                       "temperature and, since that cannot tell green from magenta, the distance from that white.",
                       html::figures({pictures}));
}

}  // namespace corvantile
