#include "corvantile/formats/writers/clf.hpp"

#include "corvantile/formats/writers/text_form.hpp"

namespace corvantile {
namespace {

constexpr std::string_view depths = R"(inBitDepth="32f" outBitDepth="32f")";

void append_description(std::string& out, std::string_view text) {
  append(out, "  <Description>{}</Description>\n", xml_text(text));
}

void append_table(std::string& out, std::string_view name, const matrix& table) {
  require_count("clf", fmt::format("rows of the {}", name), table.rows(), 2, 65536);
  append(out, "  <LUT1D name=\"{}\" {} interpolation=\"linear\">\n    <Array dim=\"{} 3\">\n", name, depths,
         table.rows());
  append_rows(out, table);
  out += "    </Array>\n  </LUT1D>\n";
}

void append_matrix(std::string& out, const mat3& m) {
  append(out, "  <Matrix name=\"matrix\" {}>\n    <Array dim=\"3 3\">\n", depths);
  for (std::size_t i = 0; i < 3; ++i) append_row(out, {{m(i, 0), m(i, 1), m(i, 2)}});
  out += "    </Array>\n  </Matrix>\n";
}

}  // namespace

std::string clf_file(const device_tables& tables, const description& about) {
  require_tables("clf", tables);
  std::string out = fmt::format(
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<ProcessList id=\"correction\" name=\"{}\" compCLFversion=\"3.0\" xmlns=\"urn:AMPAS:CLF:v3.0\">\n",
      xml_text(about.title));
  if (!about.title.empty()) append_description(out, about.title);
  for (const std::string& line : about.comments) append_description(out, line);
  append_description(out, "Tables hold their end values for input outside 0 to 1.");
  out +=
      "  <InputDescriptor>Drive values, 0 to 1</InputDescriptor>\n"
      "  <OutputDescriptor>Corrected drive values, 0 to 1</OutputDescriptor>\n";
  if (tables.two_tables) {
    append_table(out, "pre-table", tables.pre);
    append_matrix(out, tables.mix);
  }
  append_table(out, "post-table", tables.post);
  return out + "</ProcessList>\n";
}

}  // namespace corvantile
