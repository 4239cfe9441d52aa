// Section 4: which colours the display has, and which it was asked for.

#include "corvantile/appraisal/gamut.hpp"

#include <array>
#include <cmath>

#include "corvantile/colour/chromaticity.hpp"
#include "corvantile/report/html.hpp"
#include "corvantile/report/sections.hpp"
#include "corvantile/report/series.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {
namespace {

constexpr std::array<const char*, 3> channel_letters{"R", "G", "B"};
constexpr double shown_distance = 0.001;  // u'v'; a primary that moved less gets no arrow

// Beyond 700 nm the table's four decimals no longer tell a chromaticity, nor below 400 nm.
constexpr int first_nm = 400;
constexpr int last_nm = 700;

vec2 spectral(int nm) { return uv_of(wxyz[static_cast<std::size_t>((nm - wxyz_first_nm) / wxyz_step_nm)]); }

void add_locus(svg::plot& p) {
  svg::polyline locus{"locus", {}, {}, {}, {}, true};
  for (int nm = first_nm; nm <= last_nm; nm += wxyz_step_nm) {
    const vec2 uv = spectral(nm);
    locus.x.push_back(uv[0]);
    locus.y.push_back(uv[1]);
  }
  p.marks.emplace_back(std::move(locus));
  struct label {
    int nm;
    double dx, dy;
    svg::anchor anchor;
  };
  for (const label& l :
       {label{440, -5, 9, svg::anchor::end}, label{460, -5, 6, svg::anchor::end}, label{480, -5, 5, svg::anchor::end},
        label{500, 6, 4, svg::anchor::start}, label{520, 0, -6, svg::anchor::middle},
        label{560, 0, -6, svg::anchor::middle}, label{580, 0, -6, svg::anchor::middle},
        label{600, 2, -6, svg::anchor::middle}, label{620, 4, -6, svg::anchor::middle}}) {
    const vec2 uv = spectral(l.nm);
    p.marks.emplace_back(svg::points{"locus", svg::marker::circle, {uv[0]}, {uv[1]}, {}});
    p.marks.emplace_back(svg::note{std::to_string(l.nm), uv[0], uv[1], l.dx, l.dy, l.anchor, "faint"});
  }
}

svg::polyline triangle_of(const chromaticity_table& c, const char* style, const std::string& label) {
  svg::polyline t{style, {}, {}, label, {}, true};
  for (const vec2& uv : primaries_in_uv1976(c)) {
    t.x.push_back(uv[0]);
    t.y.push_back(uv[1]);
  }
  return t;
}

svg::points white_mark(const chromaticity_table& c, const char* style, svg::marker shape) {
  const vec2 uv = xy2uv1976(c.white);
  return {style, shape, {uv[0]}, {uv[1]}, {}};
}

// An arrow from where a primary was asked for to where it is, with its length.
void add_move(svg::plot& p, const vec2& from, const vec2& to, std::size_t channel) {
  const double moved = length(from - to);
  if (!(moved >= shown_distance)) return;
  p.marks.emplace_back(svg::arrow{"move", from[0], from[1], to[0], to[1]});
  struct place {
    double dx, dy;
    svg::anchor anchor;
  };
  constexpr std::array<place, 3> places{
      {{8, 16, svg::anchor::start}, {8, 14, svg::anchor::start}, {10, 10, svg::anchor::start}}};
  const place& at = places[channel];
  p.marks.emplace_back(svg::note{svg::number(moved, 4), from[0], from[1], at.dx, at.dy, at.anchor});
}

svg::plot diagram(const report_data& data) {
  const gamut_figures& g = data.figures.gamut;
  svg::plot p{
      "gamut-uv",
      "Gamut in the CIE 1976 u'v' diagram",
      "The spectral locus and the triangles of the display's primaries as measured, as asked for and as reached. "
      "Arrows lead from primaries that are out of reach to what is shown instead.",
      {"u'", 0, 0.65},
      {"v'", 0, 0.6}};
  p.equal_units = true;
  p.y_ticks = 6;
  add_locus(p);
  p.marks.emplace_back(triangle_of(g.before, "before", before_name));
  p.marks.emplace_back(triangle_of(g.after, "after filled", after_name));
  p.marks.emplace_back(white_mark(g.before, "before", svg::marker::square));
  p.marks.emplace_back(white_mark(g.after, "after", svg::marker::circle));
  if (g.asked) {
    p.marks.emplace_back(triangle_of(*g.asked, "asked", asked_name));
    p.marks.emplace_back(white_mark(*g.asked, "asked", svg::marker::cross));
    const auto asked = primaries_in_uv1976(*g.asked), shown = primaries_in_uv1976(g.after);
    for (std::size_t c = 0; c < 3; ++c) add_move(p, asked[c], shown[c], c);
  }
  if (data.measured) {
    const chromaticity_table& corners = data.measured->corners;
    svg::points m{"measured", svg::marker::diamond, {}, {}, measured_name};
    for (const vec2& xy : {corners.red, corners.green, corners.blue, corners.white}) {
      m.x.push_back(xy2uv1976(xy)[0]);
      m.y.push_back(xy2uv1976(xy)[1]);
    }
    p.marks.emplace_back(std::move(m));
  }
  const auto own = primaries_in_uv1976(g.before);
  for (std::size_t c = 0; c < 3; ++c) {
    constexpr std::array<std::array<double, 2>, 3> off{{{{9, 4}}, {{-12, -6}}, {{-14, 8}}}};
    const vec2& uv = own[c];
    p.marks.emplace_back(
        svg::note{channel_letters[c], uv[0], uv[1], off[c][0], off[c][1], svg::anchor::start, "note strong"});
  }
  return p;
}

std::string place(const vec2& uv) { return html::fixed(uv[0], 4) + ", " + html::fixed(uv[1], 4); }

std::string corner_table(const gamut_figures& g) {
  const auto corner = [](const chromaticity_table& c, std::size_t k) {
    return xy2uv1976(std::array{c.red, c.green, c.blue, c.white}[k]);
  };
  std::vector<html::column> columns{{"", false}, {"before"}, {"reached"}};
  if (g.asked) {
    columns.insert(columns.begin() + 2, {"asked for"});
    columns.push_back({"apart"});
  }
  std::vector<html::row> rows;
  for (std::size_t k = 0; k < 4; ++k) {
    html::row r{k < 3 ? channel_names[k] : "white", place(corner(g.before, k)), place(corner(g.after, k))};
    if (g.asked) {
      r.insert(r.begin() + 2, place(corner(*g.asked, k)));
      r.push_back(html::fixed(length(corner(*g.asked, k) - corner(g.after, k)), 4));
    }
    rows.push_back(std::move(r));
  }
  return html::table("Primaries and white, <i>u&prime;</i> and <i>v&prime;</i>", columns, rows, "compact");
}

std::string coverage_table(const gamut_figures& g) {
  std::vector<html::row> rows;
  for (const coverage_figures& c : g.coverage) {
    rows.push_back({html::text(c.space), html::percent(c.before, 1), html::percent(c.after, 1)});
  }
  return html::table("Covered of these triangles, by area", {{"", false}, {"before"}, {"after"}}, rows);
}

}  // namespace

plots gamut_plots(const report_data& data) { return {diagram(data)}; }

std::string gamut_section(const report_data& data) {
  const gamut_figures& g = data.figures.gamut;
  const std::string lead =
      g.asked
          ? "The triangle of the colours that red, green and blue can mix. A primary that the display cannot show "
            "moves along the line towards the white until it can; the arrow and its length say how far."
          : "The triangle of the colours that red, green and blue can mix. A gray-axis table leaves the primaries "
            "where they are.";
  return html::section("gamut", "Gamut", lead,
                       html::figures({html::figure(svg::draw(diagram(data)),
                                                   "CIE 1976 <i>u&prime;v&prime;</i> with the spectral locus, in "
                                                   "nanometres. The dark light is taken off the primaries."),
                                      html::joined({"<div>", corner_table(g), coverage_table(g), "</div>"})},
                                     "wide"));
}

}  // namespace corvantile
