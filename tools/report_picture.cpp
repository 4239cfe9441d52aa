// One picture of a job's report as an SVG file of its own, for the documentation: on a ground of its own, so that it
// can be read on light and on dark pages, and with a size, so that pages do not blow it up.

#include <charconv>
#include <cstdio>
#include <exception>
#include <optional>
#include <string>
#include <string_view>

#include "kit/job_folder.hpp"
#include "report/gather.hpp"
#include "report/page.hpp"

namespace corvantile {
namespace {

constexpr int margin = 14;        // of the ground about the picture, in its units
constexpr double enlarged = 1.5;  // pixels a unit

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

std::string pixels(int units) { return std::to_string(static_cast<int>(units * enlarged)); }

// The picture with its ground: the size behind the view box, and behind the style sheet what overrules it.
std::string on_ground(std::string picture, size inner) {
  const int width = inner.width + 2 * margin, height = inner.height + 2 * margin;
  const std::string box = "0 0 " + std::to_string(inner.width) + ' ' + std::to_string(inner.height) + '"';
  const std::string corner = std::to_string(-margin), w = std::to_string(width), h = std::to_string(height);
  picture.replace(picture.find(box), box.size(),
                  corner + ' ' + corner + ' ' + w + ' ' + h + "\" width=\"" + pixels(width) + "\" height=\"" +
                      pixels(height) + '"');
  constexpr std::string_view sheet_ends = "</style>";
  const std::size_t at = picture.find(sheet_ends);
  picture.insert(at,
                 "svg{width:" + pixels(width) + "px;height:" + pixels(height) + "px}\n.ground{fill:var(--paper)}\n");
  picture.insert(picture.find(sheet_ends) + sheet_ends.size(), "<rect class=\"ground\" x=\"" + corner + "\" y=\"" +
                                                                   corner + "\" width=\"" + w + "\" height=\"" + h +
                                                                   "\" rx=\"6\"/>");
  return picture;
}

int run(const std::string& folder, const std::string& id) {
  const kit::solved_job job = kit::open_job_folder(folder);
  const std::string picture = report_picture(gather_report(source_of(job.result, job.names.set)), id);
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
        "FOLDER is that of a job, as corvantile-kit make and solve leave it; ID that of a picture in its report:\n"
        "gray-cct, gray-distance, gray-dark, balance-before, balance-after, tone-luminance, local-gamma, tone-dark,\n"
        "gamut-uv, ramp-gray (or -red, -green, -blue, -yellow, -magenta, -cyan), table-0, table-1, accuracy\n",
        stderr);
    return 2;
  }
  return corvantile::run(argv[1], argv[2]);
} catch (const std::exception& e) {
  return std::fprintf(stderr, "%s\n", e.what()), 5;
}
