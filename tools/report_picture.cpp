// Prints one picture of a job's report as an SVG file for the documentation. It gets a background, so that it can be
// read on light and dark pages, and a size, so that pages do not enlarge it.

#include <array>
#include <charconv>
#include <cstdio>
#include <exception>
#include <optional>
#include <string>
#include <string_view>

#include "corvantile/appraisal/check.hpp"
#include "corvantile/kit/job_folder.hpp"
#include "corvantile/kit/report_job.hpp"
#include "corvantile/report/html.hpp"
#include "corvantile/report/page.hpp"

namespace corvantile {
namespace {

constexpr int margin = 14;        // of the background around the picture, in its units
constexpr double enlarged = 1.5;  // pixels per unit

struct size {
  int width, height;
};

// The size in `viewBox="0 0 W H"`.
std::optional<size> size_of(std::string_view picture) {
  constexpr std::string_view before = "viewBox=\"0 0 ";
  const std::size_t at = picture.find(before);
  if (at == std::string_view::npos) return std::nullopt;
  const char* const end = picture.data() + picture.size();
  size s{};
  const auto width = std::from_chars(picture.data() + at + before.size(), end, s.width);
  if (width.ec != std::errc{} || width.ptr == end) return std::nullopt;
  const auto height = std::from_chars(width.ptr + 1, end, s.height);
  return height.ec == std::errc{} ? std::optional(s) : std::nullopt;
}

// Left, top, width and height of the background, each after its own words.
std::string ground(size inner, const std::array<std::string_view, 4>& before) {
  const std::array<int, 4> box{-margin, -margin, inner.width + 2 * margin, inner.height + 2 * margin};
  std::string text;
  for (std::size_t i = 0; i < box.size(); ++i) text += html::joined({before[i], std::to_string(box[i])});
  return text;
}

// The picture on a background in the colour of the paper, enlarged by `enlarged`.
std::string on_ground(std::string_view picture, size inner) {
  const auto pixels = [](int units) { return std::to_string(static_cast<int>((units + 2 * margin) * enlarged)); };
  const std::string width = pixels(inner.width), height = pixels(inner.height);
  constexpr std::string_view box_begins = R"(viewBox=")", sheet_ends = "</style>";
  const std::size_t box = picture.find(box_begins) + box_begins.size(), after_box = picture.find('"', box);
  const std::size_t sheet = picture.find(sheet_ends);
  return html::joined({picture.substr(0, box), ground(inner, {"", " ", " ", " "}), R"(" width=")", width,
                       R"(" height=")", height, picture.substr(after_box, sheet - after_box),
                       // the page's style sheet lets pictures fill the page
                       "svg{width:", width, "px;height:", height, "px}\n.ground{fill:var(--paper)}\n", sheet_ends,
                       R"(<rect class="ground" x=")",
                       ground(inner, {"", R"(" y=")", R"(" width=")", R"(" height=")"}), R"(" rx="6"/>)",
                       picture.substr(sheet + sheet_ends.size())});
}

int run(const std::string& folder, const std::string& id) {
  const auto [job, record] = kit::open_job(folder);
  const quality checked = check_measurements(job.file.samples, job.file.known);
  const std::string picture = report_picture(kit::report_of(job, checked, record, {}), id);
  const auto inner = size_of(picture);
  if (!inner) return std::fprintf(stderr, "The report has no picture %s\n", id.c_str()), 2;
  const std::string file = on_ground(picture, *inner);
  return std::fwrite(file.data(), 1, file.size(), stdout) == file.size() && std::fflush(stdout) == 0 ? 0 : 6;
}

}  // namespace
}  // namespace corvantile

int main(int argc, char** argv) try {
  if (argc != 3) {
    std::fputs(
        "Usage: report_picture FOLDER ID > picture.svg\n"
        "FOLDER is the folder of a job, from corvantile-kit make or solve. ID names a picture of its report:\n"
        "gray-cct, gray-distance, gray-dark, balance-before, balance-after, tone-luminance, local-gamma, tone-dark,\n"
        "gamut-uv, ramp-gray (or -red, -green, -blue, -yellow, -magenta, -cyan), table-0, table-1, accuracy\n",
        stderr);
    return 2;
  }
  return corvantile::run(argv[1], argv[2]);
} catch (const std::exception& e) {
  return std::fprintf(stderr, "%s\n", e.what()), 5;
}
