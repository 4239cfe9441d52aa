#include "corvantile/formats/writers/spi.hpp"

#include "corvantile/formats/writers/text_form.hpp"

namespace corvantile {
namespace {

std::string spi1d(const matrix& table) {
  std::string out = fmt::format("Version 1\nFrom 0.0 1.0\nLength {}\nComponents 3\n{{\n", table.rows());
  append_rows(out, table);
  return out + "}\n";
}

// Three rows of three factors and an offset.
std::string spimtx(const mat3& m) {
  std::string out;
  for (std::size_t i = 0; i < 3; ++i) append(out, "{:.9g} {:.9g} {:.9g} 0\n", m(i, 0), m(i, 1), m(i, 2));
  return out;
}

std::string config(const std::vector<file_content>& steps, const description& about) {
  std::string what = about.title;
  for (const std::string& line : about.comments) what.append(what.empty() ? "" : " ").append(line);
  std::string out =
      "ocio_profile_version: 1\ndescription: " + yaml_quoted(what) +
      "\nsearch_path: .\nroles:\n  default: drive\n"
      "  scene_linear: drive  # there is but this one; OpenColorIO asks for the role\ndisplays:\n  display:\n"
      "    - !<View> {name: corrected, colorspace: corrected}\n"
      "active_displays: [display]\nactive_views: [corrected]\ncolorspaces:\n"
      "  - !<ColorSpace>\n    name: drive\n    isdata: false\n"
      "  - !<ColorSpace>\n    name: corrected\n    isdata: false\n"
      "    from_reference: !<GroupTransform>\n      children:\n";
  for (const file_content& step : steps)
    append(out, "        - !<FileTransform> {{src: {}, interpolation: linear}}\n", step.name);
  return out;
}

}  // namespace

std::vector<file_content> spi_files(const device_tables& tables, const description& about) {
  require_tables("spi", tables);
  std::vector<file_content> files;
  if (tables.two_tables) {
    files.push_back({"preLUT.spi1d", spi1d(tables.pre)});
    files.push_back({"matrix.spimtx", spimtx(tables.mix)});
  }
  files.push_back({"postLUT.spi1d", spi1d(tables.post)});
  files.push_back({"config.ocio", config(files, about)});
  return files;
}

}  // namespace corvantile
