// Section 8: how to make exactly this again.

#include "corvantile/report/html.hpp"
#include "corvantile/report/sections.hpp"

namespace corvantile {
namespace {

std::string pairs(std::string_view caption, const std::vector<text_pair>& list) {
  if (list.empty()) return {};
  std::vector<html::row> rows;
  rows.reserve(list.size());
  for (const text_pair& p : list) {
    rows.push_back({html::text(p.name), html::joined({"<code>", html::text(p.value), "</code>"})});
  }
  return html::table(caption, {{"", false}, {"", false}}, rows, "pairs");
}

}  // namespace

std::string remake_section(const report_data& data) {
  const remake_record& r = data.remake;
  std::string version = html::joined({"Made with ", html::text(r.version.empty() ? "an unnamed version" : r.version),
                                      data.date.empty() ? "" : ", " + html::text(data.date), "."});
  if (!r.command.empty()) version += " The same tables again: <code>" + html::text(r.command) + "</code>";
  return html::section("again", "Making exactly this again",
                       "The same program, settings and measurements give the same tables, bit for bit.",
                       "<div class=\"columns\">" + pairs("Settings", r.settings) + pairs("Checksums", r.checksums) +
                           "</div>\n" + html::paragraph(version));
}

}  // namespace corvantile
