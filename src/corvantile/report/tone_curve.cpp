// Section 3: how luminance grows with the drive.

#include <algorithm>
#include <array>
#include <cmath>

#include "corvantile/report/html.hpp"
#include "corvantile/report/sections.hpp"
#include "corvantile/report/series.hpp"

namespace corvantile {
namespace {

using series_of = std::vector<double> gray_curve::*;

void add_states(svg::plot& p, const report_data& data, series_of values) {
  const gray_figures& g = data.figures.gray;
  const auto add = [&](const gray_curve& c, const char* style, const std::string& label) {
    p.marks.emplace_back(svg::polyline{style, in_percent(c.drive), c.*values, label, {}});
  };
  add(g.before, "before", before_name);
  add(g.after, "after", after_name);
  add(g.asked, "asked", asked_name);
  if (data.measured) {
    const gray_curve& m = data.measured->gray;
    p.marks.emplace_back(svg::points{"measured", svg::marker::circle, in_percent(m.drive), m.*values, measured_name});
  }
}

double largest(const std::vector<double>& v) {
  double m = 0;
  for (const double e : v) m = std::fmax(m, e);
  return m;
}

svg::plot luminance(const report_data& data) {
  const gray_figures& g = data.figures.gray;
  const double top = std::max({largest(g.before.luminance), largest(g.after.luminance), largest(g.asked.luminance)});
  svg::axis y{"luminance, " + data.unit, top / 100, top * 1.2, true};
  for (const gray_curve* c : {&g.asked, &g.before, &g.after}) y = holding(y, within(c->drive, c->luminance, 0.01));
  y.from = std::max(y.from / 1.3, top * 1e-6);
  svg::plot p{"tone-luminance",
              "Luminance over the gray drive",
              "Luminance before and after the correction and as asked for, both axes logarithmic.",
              {"gray drive, %", 1, 100, true},
              y};
  add_states(p, data, &gray_curve::luminance);
  return p;
}

svg::plot local_gamma(const report_data& data) {
  const gray_figures& g = data.figures.gray;
  svg::axis y{"local gamma", 2, 2.4};
  for (const gray_curve* c : {&g.asked, &g.before, &g.after}) y = holding(y, within(c->drive, c->gamma, 0.05, 0.97));
  y.from = std::max(y.from, 0.0);
  y.to = std::min(y.to, 5.0);
  svg::plot p{
      "local-gamma",
      "Local gamma over the gray drive",
      "Slope of the luminance on logarithmic axes, the black taken off, before and after the correction and as "
      "asked for. A power law is a level line.",
      {"gray drive, %", 0, 100},
      svg::rounded(y)};
  add_states(p, data, &gray_curve::gamma);
  return p;
}

svg::plot lowest_tenth(const report_data& data) {
  const gray_figures& g = data.figures.gray;
  svg::axis y{"luminance, " + data.unit, 0, 0};
  for (const gray_curve* c : {&g.asked, &g.before, &g.after}) y = holding(y, within(c->drive, c->luminance, 0, 0.1));
  svg::plot p{
      "tone-dark",
      "Luminance of the lowest tenth of the drives",
      "Luminance up to a drive of 10 percent, before and after the correction and as asked for, both axes linear.",
      {"gray drive, %", 0, 10},
      svg::rounded(y)};
  add_states(p, data, &gray_curve::luminance);
  return p;
}

}  // namespace

plots tone_curve_plots(const report_data& data) { return {luminance(data), local_gamma(data), lowest_tenth(data)}; }

std::string tone_curve_section(const report_data& data) {
  const plots all = tone_curve_plots(data);
  using html::figure;
  return html::section(
      "tone", "Tone curve",
      "How luminance grows from black to white. On logarithmic axes a power law is a straight line; its slope is the "
      "gamma, which the second picture shows at every drive.",
      html::figures({figure(svg::draw(all[0]), "Luminance, both axes logarithmic."),
                     figure(svg::draw(all[1]), "Local gamma, the black taken off."),
                     figure(svg::draw(all[2]), "The lowest tenth of the drives, both axes linear.")}));
}

}  // namespace corvantile
