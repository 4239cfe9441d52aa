#include "corvantile/report/html.hpp"

#include <cmath>

#include "corvantile/report/svg.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile::html {

std::string text(std::string_view utf8) { return svg::escape(utf8); }

std::string fixed(double v, int decimals) {
  if (!std::isfinite(v)) return "&ndash;";
  std::string s = decimal(v, decimals);
  if (!s.starts_with('-')) return s;
  const bool zero = s.find_first_not_of("-0.") == std::string::npos;
  return (zero ? "" : "&minus;") + s.substr(1);
}

std::string percent(double v, int decimals) {
  return std::isfinite(v) ? fixed(100 * v, decimals) + "&nbsp;%" : fixed(v, decimals);
}

std::string joined(std::initializer_list<std::string_view> markup) {
  std::string out;
  for (const std::string_view m : markup) out += m;
  return out;
}

std::string paragraph(std::string_view markup, std::string_view style) {
  if (markup.empty()) return {};
  const std::string open = style.empty() ? "<p>" : joined({"<p class=\"", style, "\">"});
  return joined({open, markup, "</p>\n"});
}

std::string table(std::string_view caption_markup, const std::vector<column>& columns, const std::vector<row>& markup,
                  std::string_view style) {
  const auto cell = [&](std::string_view tag, std::size_t c, std::string_view content) {
    const std::string_view scope = tag == "td" ? "" : content.empty() ? "" : " scope=\"col\"";
    return joined({"<", tag, scope, columns[c].numeric ? " class=\"n\">" : ">", content, "</", tag, ">"});
  };
  std::string out = joined({R"(<div class="scroll"><table class=")", style.empty() ? "plain" : style, "\"><caption>",
                            caption_markup, "</caption>\n<thead><tr>"});
  for (std::size_t c = 0; c < columns.size(); ++c)
    out += cell(columns[c].head.empty() ? "td" : "th", c, columns[c].head);
  out += "</tr></thead>\n<tbody>\n";
  for (const row& r : markup) {
    out += "<tr>";
    for (std::size_t c = 0; c < columns.size() && c < r.size(); ++c) {
      out += c == 0 ? joined({"<th scope=\"row\">", r[c], "</th>"}) : cell("td", c, r[c]);
    }
    out += "</tr>\n";
  }
  return out + "</tbody></table></div>\n";
}

std::string tall(std::string_view name, std::string_view markup_of_table) {
  return joined({R"(<div class="tall" role="region" tabindex="0" aria-label=")", text(name), "\">\n", markup_of_table,
                 "</div>\n"});
}

std::string figure(std::string_view markup_of_picture, std::string_view markup_of_caption) {
  return joined({"<figure>", markup_of_picture, "<figcaption>", markup_of_caption, "</figcaption></figure>\n"});
}

std::string figures(std::initializer_list<std::string_view> markup, std::string_view style) {
  return joined({"<div class=\"figures ", style, "\">\n", joined(markup), "</div>\n"});
}

std::string section(std::string_view id, std::string_view heading, std::string_view lead_markup,
                    std::string_view body_markup) {
  return joined({"<section id=\"", id, "\">\n<h2>", text(heading), "</h2>\n", paragraph(lead_markup, "lead"),
                 body_markup, "</section>\n"});
}

}  // namespace corvantile::html
