// The file that a measuring run leaves.

#include <algorithm>
#include <fmt/format.h>
#include <iterator>

#include "corvantile/formats/text_lines.hpp"
#include "corvantile/measuring/run.hpp"
#include "corvantile/utils/version.hpp"

namespace corvantile::measuring {
namespace {

// A value in quotes has no way to hold one.
std::string quoted(std::string_view value) {
  std::string text = ascii(value);
  std::ranges::replace(text, '"', '\'');
  return '"' + text + '"';
}

std::string header(const journal_content& content) {
  std::string out =
      "CTI3   \n\nDESCRIPTOR \"Readings of a display\"\nORIGINATOR \"corvantile-kit " CORVANTILE_VERSION "\"\n";
  const auto keyword = [&](const char* key, std::string_view value) {
    if (!value.empty()) out += fmt::format("{} {}\n", key, quoted(value));
  };
  keyword("CREATED", content.value("date"));
  keyword("TARGET_INSTRUMENT", content.value("instrument"));
  keyword("DEVICE_CLASS", "DISPLAY");
  keyword("COLOR_REP", "RGB_XYZ");
  keyword("KEYWORD", "NORMALIZED_TO_Y_100");
  keyword("NORMALIZED_TO_Y_100", "NO");
  keyword("KEYWORD", "READINGS");
  return out + '\n';
}

}  // namespace

std::string readings_file(const journal_content& content) {
  const std::vector<measured_patch> patches = patches_of(content);
  std::string out = header(content);
  for (const fact& f : content.facts) out += "# " + ascii(f.key) + ": " + ascii(f.value) + '\n';
  for (std::size_t i = 0; i < patches.size(); ++i) {
    if (patches[i].taken > 1)
      out += fmt::format("# patch {} was read {} times: {}\n", i + 1, patches[i].taken, ascii(patches[i].why));
  }
  out += fmt::format(
      "\nNUMBER_OF_FIELDS 8\nBEGIN_DATA_FORMAT\nSAMPLE_ID RGB_R RGB_G RGB_B XYZ_X XYZ_Y XYZ_Z READINGS\n"
      "END_DATA_FORMAT\n\nNUMBER_OF_SETS {}\nBEGIN_DATA\n",
      patches.size());
  for (std::size_t i = 0; i < patches.size(); ++i) {
    const vec3 rgb = 100.0 * patches[i].drive, &xyz = patches[i].xyz;
    fmt::format_to(std::back_inserter(out), "{} {} {} {} {} {} {} {}\n", i + 1, rgb[0], rgb[1], rgb[2], xyz[0],
                   xyz[1], xyz[2], patches[i].taken);
  }
  return out + "END_DATA\n";
}

}  // namespace corvantile::measuring
