#include "corvantile/report/page.hpp"

#include <string_view>

#include "corvantile/report/html.hpp"
#include "corvantile/report/sections.hpp"

namespace corvantile {
namespace {

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
  for (const auto& of_section :
       {gray_axis_plots, tone_curve_plots, gamut_plots, difference_plots, table_plots, trust_plots}) {
    for (const svg::plot& p : of_section(data))
      if (p.id == id) return svg::draw_alone(p, picture_style());
  }
  return {};
}

}  // namespace corvantile
