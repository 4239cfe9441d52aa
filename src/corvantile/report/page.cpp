#include "corvantile/report/page.hpp"

#include <string_view>

#include "corvantile/report/html.hpp"
#include "corvantile/report/sections.hpp"

namespace corvantile {
namespace {

// The page around its title, its styles and its sections.
constexpr std::string_view opening = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<meta name="color-scheme" content="light dark">
<title>)";
constexpr std::string_view styles = ": correction report</title>\n<style>\n";
constexpr std::string_view body = "</style>\n</head>\n<body>\n<main>\n";
constexpr std::string_view closing = "</main>\n</body>\n</html>\n";

std::string header(const report_data& data) {
  const std::string mode = data.mode.empty() ? "" : html::joined({" &middot; ", html::text(data.mode)});
  return html::joined({"<header>\n<p class=\"kind\">Display correction", mode, "</p>\n<h1>", html::text(data.display),
                       "</h1>\n", html::paragraph(html::text(data.target), "target"), "</header>\n"});
}

}  // namespace

std::string report_page(const report_data& data) {
  return html::joined({opening, html::text(data.display.empty() ? "Display" : data.display), styles, page_style(),
                       picture_style(), body, header(data), verdict_section(data), measured_section(data),
                       gray_axis_section(data), tone_curve_section(data), gamut_section(data),
                       difference_section(data), table_section(data), trust_section(data), remake_section(data),
                       closing});
}

std::string report_picture(const report_data& data, const std::string& id) {
  const std::string page = report_page(data);
  const std::size_t open = page.find("<svg id=\"" + id + '"');
  if (open == std::string::npos) return {};
  const std::size_t content = page.find('>', open) + 1;
  const std::string_view element = std::string_view(page).substr(open, page.find("</svg>", open) + 6 - open);
  return html::joined({"<svg xmlns=\"http://www.w3.org/2000/svg\"", element.substr(4, content - open - 4), "<style>",
                       picture_style(), "</style>", element.substr(content - open), "\n"});
}

}  // namespace corvantile
