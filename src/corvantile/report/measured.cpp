// What the display was measured to show behind the tables, where it was. The pictures of the other sections hold the
// same readings; here are the words, the figures and every patch.

#include <algorithm>
#include <cmath>

#include "corvantile/colour/chromaticity.hpp"
#include "corvantile/report/html.hpp"
#include "corvantile/report/sections.hpp"
#include "corvantile/report/wording.hpp"

namespace corvantile {
namespace {

using html::fixed;

constexpr std::size_t most_patches = 1500;  // keeps the page within its size

std::string summary(const verification& m) {
  const auto line = [](const char* name, const difference_summary& s) {
    return html::row{name, fixed(s.mean, 2), fixed(s.max, 2), html::text(s.where ? patch_name(*s.where) : "")};
  };
  return html::table("Measured, &Delta;E<sub>00</sub>", {{"", false}, {"mean"}, {"largest"}, {"where", false}},
                     {line("grays, from the target", m.grays), line("all patches, from the target", m.all),
                      line("all patches, from the prediction", m.from_prediction)});
}

std::string figures(const report_data& data) {
  const white_figures& p = data.figures.white_after;
  const white_figures& m = data.measured->white;
  const auto xy = [](const white_figures& w) { return fixed(w.xy[0], 4) + ", " + fixed(w.xy[1], 4); };
  const auto contrast = [](const white_figures& w) { return fixed(w.xyz[1] / w.black[1], 0); };
  return html::table(
      "White and contrast", {{"", false}, {"predicted"}, {"measured"}},
      {{"white, K", fixed(p.cct, 0), fixed(m.cct, 0)},
       {"white, x and y", xy(p), xy(m)},
       {"its distance from the target, <i>u&prime;v&prime;</i>", fixed(p.distance, 4), fixed(m.distance, 4)},
       {"contrast, to 1", contrast(p), contrast(m)}});
}

std::string colour_of(const vec3& xyz) {
  const vec2 xy = chromaticity(xyz);
  return fixed(xy[0], 4) + " " + fixed(xy[1], 4);
}

std::string patch_table(const verification& m) {
  std::vector<const verified_patch*> shown;
  shown.reserve(m.patches.size());
  for (const verified_patch& p : m.patches) shown.push_back(&p);
  const bool cut = shown.size() > most_patches;
  if (cut) {
    std::ranges::stable_sort(shown, std::ranges::greater(), [](const verified_patch* p) {
      return std::isfinite(p->from_asked) ? p->from_asked : -1.0;
    });
    shown.resize(most_patches);
  }
  std::vector<html::row> rows;
  rows.reserve(shown.size());
  for (const verified_patch* p : shown) {
    rows.push_back({html::joined({fixed(100 * p->drive[0], 1), " ", fixed(100 * p->drive[1], 1), " ",
                                  fixed(100 * p->drive[2], 1)}),
                    colour_of(p->asked), fixed(p->asked[1], 2), colour_of(p->measured), fixed(p->measured[1], 2),
                    fixed(p->from_asked, 2), fixed(p->from_predicted, 2)});
  }
  const std::string caption =
      cut ? "The worst " + std::to_string(most_patches) + " of " + std::to_string(m.patches.size()) + " patches"
          : "All " + std::to_string(m.patches.size()) + " patches";
  return html::tall(caption, html::table(caption,
                                         {{"R G B, %", false},
                                          {"asked for, x y"},
                                          {"Y"},
                                          {"measured, x y"},
                                          {"Y"},
                                          {"&Delta;E<sub>00</sub> from target"},
                                          {"from prediction"}},
                                         rows, "compact"));
}

}  // namespace

std::string measured_section(const report_data& data) {
  if (!data.measured) return {};
  const verification& m = *data.measured;
  std::string diagnosis;
  for (const std::string& words : diagnosis_of(m)) diagnosis += html::paragraph(html::text(words));
  return html::section(
      "measured", "Measured behind the tables", html::text(verdict_of(m)),
      diagnosis + html::joined({"<div class=\"columns\">", summary(m), figures(data), "</div>\n"}) + patch_table(m));
}

}  // namespace corvantile
