#include "corvantile/report/html.hpp"

#include <cmath>
#include <fmt/format.h>

#include "corvantile/report/svg.hpp"

namespace corvantile::html {

std::string text(std::string_view utf8) { return svg::escape(utf8); }

std::string fixed(double v, int decimals) {
  if (!std::isfinite(v)) return "&ndash;";
  std::string s = fmt::format("{:.{}f}", v, decimals);
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
  return fmt::format("<p{}>{}</p>\n", style.empty() ? "" : fmt::format(" class=\"{}\"", style), markup);
}

std::string table(std::string_view caption_markup, const std::vector<column>& columns, const std::vector<row>& markup,
                  std::string_view style) {
  const auto cell = [&](std::string_view tag, std::size_t c, std::string_view content) {
    return fmt::format("<{0}{1}{2}>{3}</{0}>", tag, tag == "th" ? R"( scope="col")" : "",
                       columns[c].numeric ? R"( class="n")" : "", content);
  };
  std::string out = fmt::format("<div class=\"scroll\"><table class=\"{}\"><caption>{}</caption>\n<thead><tr>",
                                style.empty() ? "plain" : style, caption_markup);
  for (std::size_t c = 0; c < columns.size(); ++c)
    out += cell(columns[c].head.empty() ? "td" : "th", c, columns[c].head);
  out += "</tr></thead>\n<tbody>\n";
  for (const row& r : markup) {
    out += "<tr>";
    for (std::size_t c = 0; c < columns.size() && c < r.size(); ++c) {
      out += c == 0 ? fmt::format("<th scope=\"row\">{}</th>", r[c]) : cell("td", c, r[c]);
    }
    out += "</tr>\n";
  }
  return out + "</tbody></table></div>\n";
}

std::string tall(std::string_view name, std::string_view markup_of_table) {
  return fmt::format("<div class=\"tall\" role=\"region\" tabindex=\"0\" aria-label=\"{}\">\n{}</div>\n", text(name),
                     markup_of_table);
}

std::string figure(std::string_view markup_of_picture, std::string_view markup_of_caption) {
  return fmt::format("<figure>{}<figcaption>{}</figcaption></figure>\n", markup_of_picture, markup_of_caption);
}

std::string figures(std::initializer_list<std::string_view> markup, std::string_view style) {
  return fmt::format("<div class=\"figures {}\">\n{}</div>\n", style, joined(markup));
}

std::string section(std::string_view id, std::string_view heading, std::string_view lead_markup,
                    std::string_view body_markup) {
  return fmt::format("<section id=\"{}\">\n<h2>{}</h2>\n{}{}</section>\n", id, text(heading),
                     paragraph(lead_markup, "lead"), body_markup);
}

}  // namespace corvantile::html
