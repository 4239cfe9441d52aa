#include "corvantile/formats/writers/clf.hpp"

#include "corvantile/formats/writers/text_form.hpp"

namespace corvantile {
namespace {

constexpr std::string_view depths = R"(inBitDepth="32f" outBitDepth="32f")";

void append_description(std::string& out, std::string_view text) {
  out.append("  <Description>").append(xml_text(text)).append("</Description>\n");
}

void append_table(std::string& out, std::string_view name, const matrix& table) {
  require_count("clf", std::string("rows of the ") + std::string(name), table.rows(), 2, 65536);
  out.append("  <LUT1D name=\"").append(name).append("\" ").append(depths).append(" interpolation=\"linear\">\n");
  out += "    <Array dim=\"";
  append_integer_text(out, table.rows());
  out += " 3\">\n";
  append_rows(out, table);
  out += "    </Array>\n  </LUT1D>\n";
}

void append_matrix(std::string& out, const mat3& m) {
  out.append("  <Matrix name=\"matrix\" ").append(depths).append(">\n    <Array dim=\"3 3\">\n");
  for (std::size_t i = 0; i < 3; ++i) append_row(out, {{m(i, 0), m(i, 1), m(i, 2)}});
  out += "    </Array>\n  </Matrix>\n";
}

}  // namespace

std::string clf_file(const device_tables& tables, const description& about) {
  require_tables("clf", tables);
  std::string out = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<ProcessList id=\"correction\" name=\"" +
                    xml_text(about.title) + "\" compCLFversion=\"3.0\" xmlns=\"urn:AMPAS:CLF:v3.0\">\n";
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
