// Section 1: one sentence and five figures.

#include <cmath>

#include "corvantile/report/html.hpp"
#include "corvantile/report/sections.hpp"

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

std::string white_tile(const verdict_record& v) {
  const auto xy = [](const white_record& w) { return fixed(w.xy[0], 4) + ", " + fixed(w.xy[1], 4); };
  return tile("White", fixed(v.after.cct, 0), "K",
              small("x, y " + xy(v.after) + "; asked for " + xy(v.asked)) +
                  small(joined({fixed(v.after.distance, 4), " from it in <i>u&prime;v&prime;</i>, before ",
                                fixed(v.before.distance, 4), " (", fixed(v.before.cct, 0), "&nbsp;K)"})));
}

std::string luminance_tile(const report_data& data) {
  const verdict_record& v = data.verdict;
  std::string losses;
  for (const loss_record& l : v.losses) {
    losses += joined({losses.empty() ? "" : " &times; ", "<span class=\"whole\">", text(l.name), " ",
                      fixed(l.factor, 3), "</span>"});
  }
  return tile(
      "Luminance", percent(v.after.luminance / v.before.luminance), "of before",
      small(joined({fixed(v.before.luminance, 1), " &rarr; ", fixed(v.after.luminance, 1), " ", text(data.unit)})) +
          small(losses));
}

std::string difference_tile(std::string_view name, const difference_summary& after,
                            const difference_summary& before) {
  const std::string where = after.where.empty() ? "" : " (" + text(after.where) + ")";
  return tile(name, fixed(after.mean, 2), "mean &Delta;E<sub>00</sub>",
              small("largest " + fixed(after.max, 2) + where) +
                  small("before: mean " + fixed(before.mean, 2) + ", largest " + fixed(before.max, 2)));
}

std::string contrast(const white_record& w) {
  const double ratio = w.luminance / w.black;
  return std::isfinite(ratio) ? fixed(ratio, 0) + "&nbsp;:&nbsp;1" : w.black == 0 ? "&infin;" : fixed(unknown, 0);
}

std::string contrast_tile(const report_data& data) {
  const verdict_record& v = data.verdict;
  return tile("Contrast", contrast(v.after), "",
              small(joined({"black ", fixed(v.after.black, 3), " ", text(data.unit)})) +
                  small(joined({"before ", contrast(v.before), ", black ", fixed(v.before.black, 3)})));
}

}  // namespace

std::string verdict_section(const report_data& data) {
  const verdict_record& v = data.verdict;
  return joined(
      {"<section id=\"verdict\" aria-label=\"Verdict\">\n", html::paragraph(text(v.sentence), "verdict"),
       "<div class=\"tiles\">\n", white_tile(v), luminance_tile(data),
       difference_tile("Grays", v.gray_after, v.gray_before),
       difference_tile("Primaries, secondaries", v.corners_after, v.corners_before), contrast_tile(data), "</div>\n",
       html::paragraph("All figures after the correction are the model&rsquo;s prediction, not a measurement. "
                       "<a href=\"#trust\">How far to trust them</a>.",
                       "aside"),
       "</section>\n"});
}

}  // namespace corvantile
