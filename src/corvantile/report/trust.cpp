// Section 7: what the prediction rests on.

#include <algorithm>
#include <cmath>

#include "corvantile/report/html.hpp"
#include "corvantile/report/sections.hpp"
#include "corvantile/report/series.hpp"

namespace corvantile {
namespace {

using html::fixed;
using html::text;

constexpr std::size_t worst_shown = 3;

std::string finding_list(const std::vector<finding>& findings) {
  if (findings.empty()) return html::paragraph("The checks of the measurements found nothing to report.");
  std::string out = "<ul class=\"findings\">\n";
  for (const finding& f : findings) {
    const std::string action = f.action.empty() ? "" : html::joined({"<em>", text(f.action), "</em> "});
    out += html::joined({"<li><span class=\"severity\">", text(name_of(f.level)), "</span> ", text(f.message), " ",
                         action, "<code>", text(f.id), "</code></li>\n"});
  }
  return out + "</ul>\n";
}

svg::plot histogram(const std::vector<prediction>& worst_first) {
  constexpr int bins = 20;
  const svg::axis x =
      svg::rounded({"CIEDE2000, measured against the model", 0,
                    worst_first.empty() ? 1.0 : std::clamp(worst_first.front().difference, 1.0, 1e6)});
  svg::bars counted{"bar", {}, {}};
  counted.bars.reserve(bins);
  for (int b = 0; b < bins; ++b) counted.bars.push_back({x.to * b / bins, x.to * (b + 1) / bins, 0});
  for (const prediction& u : worst_first) {
    const int b = std::clamp(static_cast<int>(u.difference / x.to * bins), 0, bins - 1);
    counted.bars[static_cast<std::size_t>(b)].height += 1;
  }
  svg::axis y{"patches", 0, 1};
  for (const svg::bar& b : counted.bars) y = holding(y, {b.height});
  svg::plot p{"accuracy", "Accuracy of the model on patches that it has not seen",
              "How many patches differ by how much from what the model predicts for them.", x, svg::rounded(y)};
  p.height = 150;
  p.marks.emplace_back(std::move(counted));
  return p;
}

std::string drive_of(const vec3& d) {
  return fixed(100 * d[0], 1) + ", " + fixed(100 * d[1], 1) + ", " + fixed(100 * d[2], 1);
}

std::string accuracy(const accuracy_figures& a) {
  const std::vector<prediction>& all = a.patches;
  if (all.empty()) {
    return html::paragraph(
        "The measurements hold no patches beside the ramps, so how well the model predicts colours "
        "that it has not seen is not known. Measure some more patches to find out.");
  }
  std::vector<html::row> rows;
  for (std::size_t i = 0; i < std::min(worst_shown, all.size()); ++i) {
    rows.push_back({drive_of(all[i].drive), fixed(all[i].difference, 2)});
  }
  return html::figures(
      {html::figure(svg::draw(histogram(all)),
                    "Accuracy on " + std::to_string(all.size()) + " patches that the fit has not seen."),
       html::joined({"<div>",
                     html::table("Worst of them", {{"drive R, G, B in %", false}, {"&Delta;E<sub>00</sub>"}}, rows),
                     html::paragraph("Mean " + fixed(a.unseen.mean, 2) + ", 95th percentile " +
                                     fixed(a.unseen.p95, 2) + ", largest " + fixed(a.unseen.max, 2) +
                                     ". What is predicted above cannot be more "
                                     "certain than this."),
                     "</div>"})},
      "wide");
}

std::string data_table(const quality& q) {
  const std::string made_of = q.known.ramps.empty() ? "The ramps of the file were taken as they are."
                                                    : "Red, green and blue ramps: " + q.known.ramps + ".";
  return html::table("The readings", {{"", false}, {""}, {"what it says", false}},
                     {{"additivity", html::percent(1 + q.additivity, 2),
                       "sum of the three channels over the white; the model takes 100&nbsp;% for granted"},
                      {"noise", html::percent(q.noise.middle / 100, 2), "scatter of the ramps off a smooth curve"},
                      {"repeatability", html::percent(q.repeat_spread.value_or(unknown), 2),
                       "spread of patches that were read more than once"}},
                     "words") +
         html::paragraph(text(made_of));
}

}  // namespace

plots trust_plots(const report_data& data) {
  const auto& patches = data.measurements.accuracy.patches;
  return patches.empty() ? plots() : plots{histogram(patches)};
}

std::string trust_section(const report_data& data) {
  const std::string how =
      "corvantile-kit chart --verify 50 -o verify.ti1, measure it with the correction loaded, then corvantile-kit "
      "verify " +
      data.folder + " verify.ti3";
  return html::section(
      "trust", "How far to trust it",
      "All of this is the prediction of a model that was fitted to the measurements. It is as good as "
      "these and as the display is steady: warming up, viewing angle, another input or picture mode, "
      "dynamic contrast and ageing are not in it.",
      finding_list(data.findings) + accuracy(data.measurements.accuracy) + data_table(data.measurements) +
          html::paragraph(text(how), "aside"));
}

}  // namespace corvantile
