// Section 1: one sentence and five figures.

#include <cmath>

#include "corvantile/report/html.hpp"
#include "corvantile/report/sections.hpp"
#include "corvantile/report/wording.hpp"

namespace corvantile {
namespace {

using html::fixed;
using html::joined;
using html::percent;
using html::text;

std::string tile(std::string_view name, std::string_view big, std::string_view unit, std::string_view details) {
  return joined({"<div class=\"tile\"><h3>", text(name), "</h3>", "<p class=\"big\">", big,
                 unit.empty() ? "" : joined({" <small>", unit, "</small>"}), "</p>", details, "</div>\n"});
}

std::string small(std::string_view markup) { return html::paragraph(markup); }

std::string white_tile(const job_figures& f) {
  const auto place = [](const vec2& xy) { return fixed(xy[0], 4) + ", " + fixed(xy[1], 4); };
  return tile("White", fixed(f.white_after.cct, 0), "K",
              small("x, y " + place(f.white_after.xy) + "; asked for " + place(f.white_asked)) +
                  small(joined({fixed(f.white_after.distance, 4), " from it in <i>u&prime;v&prime;</i>, before ",
                                fixed(f.white_before.distance, 4), " (", fixed(f.white_before.cct, 0), "&nbsp;K)"})));
}

std::string luminance_tile(const report_data& data) {
  const job_figures& f = data.figures;
  const struct {
    const char* name;
    double left;
    bool always;
  } losses[] = {{"this white", f.light.white, true},
                {"lumfrac", f.light.lumfrac, false},
                {"display&rsquo;s limit", f.light.limit, false},
                {data.tables.two_tables ? "head-room" : "gray table", f.light.rest, false}};
  std::string product;
  for (const auto& l : losses) {
    if (!l.always && !(std::abs(l.left - 1) > 0.002)) continue;
    product += joined(
        {product.empty() ? "" : " &times; ", "<span class=\"whole\">", l.name, " ", fixed(l.left, 3), "</span>"});
  }
  const double before = f.white_before.xyz[1], after = f.white_after.xyz[1];
  return tile("Luminance", percent(after / before), "of before",
              small(joined({fixed(before, 1), " &rarr; ", fixed(after, 1), " ", text(data.unit)})) + small(product));
}

std::string difference_tile(std::string_view name, const difference_summary& after,
                            const difference_summary& before) {
  const std::string where = after.where ? " (" + text(patch_name(*after.where)) + ")" : "";
  return tile(name, fixed(after.mean, 2), "mean &Delta;E<sub>00</sub>",
              small("largest " + fixed(after.max, 2) + where) +
                  small("before: mean " + fixed(before.mean, 2) + ", largest " + fixed(before.max, 2)));
}

std::string contrast(const white_figures& w) {
  const double ratio = w.xyz[1] / w.black[1];
  return std::isfinite(ratio) ? fixed(ratio, 0) + "&nbsp;:&nbsp;1" : w.black[1] == 0 ? "&infin;" : fixed(unknown, 0);
}

std::string contrast_tile(const report_data& data) {
  const white_figures &before = data.figures.white_before, &after = data.figures.white_after;
  return tile("Contrast", contrast(after), "",
              small(joined({"black ", fixed(after.black[1], 3), " ", text(data.unit)})) +
                  small(joined({"before ", contrast(before), ", black ", fixed(before.black[1], 3)})));
}

}  // namespace

std::string verdict_section(const report_data& data) {
  const job_figures& f = data.figures;
  return joined(
      {"<section id=\"verdict\" aria-label=\"Verdict\">\n", html::paragraph(text(verdict_of(f)), "verdict"),
       "<div class=\"tiles\">\n", white_tile(f), luminance_tile(data),
       difference_tile("Grays", f.gray.difference_after, f.gray.difference_before),
       difference_tile("Primaries, secondaries", f.corners_after, f.corners_before), contrast_tile(data), "</div>\n",
       html::paragraph("All figures after the correction are the model&rsquo;s prediction, not a measurement. "
                       "<a href=\"#trust\">How far to trust them</a>.",
                       "aside"),
       "</section>\n"});
}

}  // namespace corvantile
