// Section 6: what the device will hold.

#include <algorithm>

#include "corvantile/report/html.hpp"
#include "corvantile/report/sections.hpp"
#include "corvantile/report/series.hpp"

namespace corvantile {
namespace {

using html::fixed;

constexpr std::size_t drawn_rows = 256;  // of longer tables every so-and-so-many-th row is drawn

struct named_table {
  const char *name, *input, *output;
  const matrix& rows;
};

std::vector<named_table> tables_in(const device_tables& t) {
  if (!t.two_tables) return {{"Gray table", "drive", "device drive", t.post}};
  return {{"Pre-table", "drive", "linear light", t.pre}, {"Post-table", "linear light", "device drive", t.post}};
}

svg::plot curve(const named_table& t, std::size_t index) {
  svg::plot p{"table-" + std::to_string(index),
              t.name,
              "The three columns of the table over its input, with the straight line of a table that does nothing.",
              {t.input, 0, 1},
              {t.output, 0, 1}};
  p.marks.emplace_back(svg::polyline{"grid", {0, 1}, {0, 1}, {}, {}});
  const char* const styles[] = {"red", "green", "blue"};
  const char* const letters[] = {"R", "G", "B"};
  const std::size_t n = t.rows.rows();
  const std::size_t step = std::max<std::size_t>(1, n / drawn_rows);
  for (std::size_t c = 0; c < std::min<std::size_t>(3, t.rows.cols()); ++c) {
    svg::polyline line{styles[c], {}, {}, styles[c], letters[c]};
    const auto add = [&](std::size_t i) {
      line.x.push_back(static_cast<double>(i) / static_cast<double>(n - 1));
      line.y.push_back(t.rows(i, c));
    };
    for (std::size_t i = 0; i + 1 < n; i += step) add(i);
    if (n > 0) add(n - 1);
    for (const double v : line.y) p.y = svg::holding(p.y, {std::clamp(v, -0.5, 1.5)});
    p.marks.emplace_back(std::move(line));
  }
  p.y = svg::rounded(p.y);
  return p;
}

std::string mix_table(const mat3& m) {
  std::vector<html::row> rows;
  const char* const names[] = {"red out", "green out", "blue out"};
  for (std::size_t i = 0; i < 3; ++i) {
    rows.push_back(
        {names[i], fixed(m(i, 0), 6), fixed(m(i, 1), 6), fixed(m(i, 2), 6), fixed(m(i, 0) + m(i, 1) + m(i, 2), 6)});
  }
  return html::table("Matrix between the tables", {{"", false}, {"red in"}, {"green in"}, {"blue in"}, {"sum"}}, rows,
                     "compact");
}

std::string entries_of(int bits) { return bits > 0 ? std::to_string(bits) + "-bit entries" : "real entries"; }

std::string clip_table(const report_data& data) {
  const auto& all_clipped = data.figures.clipped;
  const auto tables = tables_in(data.tables);
  std::vector<html::row> rows;
  std::size_t all = 0;
  for (std::size_t i = 0; i < all_clipped.size(); ++i) {
    const clip_figures& c = all_clipped[i];
    html::row r{tables[i].name};
    for (std::size_t k = 0; k < 3; ++k) {
      r.push_back(std::to_string(c.below[k]) + " / " + std::to_string(c.above[k]));
      all += c.below[k] + c.above[k];
    }
    rows.push_back(std::move(r));
  }
  if (all_clipped.empty()) return {};
  if (all == 0)
    return html::paragraph("No entry clips: all lie within the range of " + entries_of(data.bits) + ".", "aside");
  return html::table("Entries that clip, below 0 / above the largest code (" + entries_of(data.bits) + ")",
                     {{"", false}, {"red"}, {"green"}, {"blue"}}, rows);
}

std::string banding_table(const job_figures& f) {
  if (f.banding.empty()) return {};
  std::vector<html::row> rows;
  for (const banding_figures& b : f.banding) {
    html::row r{std::to_string(b.bits) + " bits"};
    for (std::size_t k = 0; k < 3; ++k)
      r.push_back(fixed(b.steps_lost[k], 0) + " (" + fixed(b.longest_run[k], 0) + ")");
    rows.push_back(std::move(r));
  }
  return html::table("Gray steps lost (longest run of equal steps)", {{"", false}, {"red"}, {"green"}, {"blue"}},
                     rows) +
         html::paragraph(
             "Of the gray steps that go in with so many bits, those that come out of the last table with the "
             "code of their neighbour, on as many bits. Long runs are seen as bands in smooth gradients; "
             "tables of more bits, or dithering, avoid them.",
             "aside");
}

}  // namespace

plots table_plots(const report_data& data) {
  plots all;
  for (const named_table& t : tables_in(data.tables)) all.push_back(curve(t, all.size()));
  return all;
}

std::string table_section(const report_data& data) {
  std::string pictures;
  const plots all = table_plots(data);
  for (const svg::plot& p : all)
    pictures +=
        html::figure(svg::draw(p), html::text(p.title) + ", " + std::to_string(data.tables.post.rows()) + " rows.");
  return html::section(
      "tables", "Tables", "What the device will hold, and what its bits make of it.",
      html::figures({pictures}) + "<div class=\"columns\">" +
          (data.tables.two_tables ? html::joined({"<div>", mix_table(data.tables.mix), "</div>"}) : "") +
          html::joined({"<div>", banding_table(data.figures), clip_table(data), "</div></div>\n"}));
}

}  // namespace corvantile
