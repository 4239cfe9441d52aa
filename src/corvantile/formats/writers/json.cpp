#include "corvantile/formats/writers/json.hpp"

#include <nlohmann/json.hpp>

#include "corvantile/formats/writers/text_form.hpp"

namespace corvantile {

using json = nlohmann::ordered_json;

static json part(const matrix& table) {
  return {{"axis", linspace(0.0, 1.0, table.rows())},
          {"red", table.col(0)},
          {"green", table.col(1)},
          {"blue", table.col(2)}};
}

std::string json_file(const device_tables& tables, const description& about) {
  require_tables("json", tables);
  json comments = json::array();
  for (const std::string& line : about.comments) comments.push_back(ascii(line));
  json out = {{"format", "corvantile-tables"}, {"version", 1}, {"title", ascii(about.title)}, {"comments", comments}};
  out["order"] = tables.two_tables ? json{"pre", "matrix", "post"} : json::array({"post"});
  if (tables.two_tables) {
    out["pre"] = part(tables.pre);
    for (std::size_t i = 0; i < 3; ++i)
      out["matrix"].push_back({tables.mix(i, 0), tables.mix(i, 1), tables.mix(i, 2)});
  }
  out["post"] = part(tables.post);
  return out.dump(1) + "\n";
}

}  // namespace corvantile
