#include "corvantile/formats/chart.hpp"

#include <algorithm>
#include <cmath>
#include <fmt/core.h>
#include <iterator>
#include <numeric>

#include "corvantile/formats/hcfr.hpp"
#include "corvantile/formats/text_lines.hpp"
#include "corvantile/numerics/halton.hpp"
#include "corvantile/utils/failure.hpp"

namespace corvantile {
namespace {

constexpr double codes = 255;
constexpr chart_patch white{{{1, 1, 1}}};
constexpr chart_patch black{};

chart_patch in_codes(const vec3& drive) {
  chart_patch patch;
  for (std::size_t c = 0; c < 3; ++c) patch.drive[c] = std::round(std::clamp(drive[c], 0.0, 1.0) * codes) / codes;
  return patch;
}

bool on_a_ramp(const vec3& d) {
  const auto dark = std::ranges::count(d.v, 0.0);
  return dark >= 2 || (d[0] == d[1] && d[1] == d[2]);
}

chart_patch patch_anywhere(const vec3& point) { return in_codes(point); }

chart_patch patch_near_gray(const vec3& point) {
  constexpr double off_gray = 0.04;
  constexpr double margin = 0.05;  // the ends of the gray axis say little about colours beside it
  const double gray = margin + (1 - 2 * margin) * point[0];
  return in_codes({{gray + off_gray * (2 * point[1] - 1), gray, gray + off_gray * (2 * point[2] - 1)}});
}

// Appends `count` patches that are on no ramp, made of successive points of the sequence.
void append_spread(std::vector<chart_patch>& patches, std::size_t count, chart_patch (*make)(const vec3&)) {
  const std::size_t end = patches.size() + count;
  for (std::size_t index = 1; patches.size() < end; ++index) {
    const chart_patch patch = make(halton(index));
    if (!on_a_ramp(patch.drive)) patches.push_back(patch);
  }
}

// The ramps without white and black.
std::vector<chart_patch> ramp_patches(std::size_t levels, chart_ramps ramps) {
  std::vector<chart_patch> patches;
  for (std::size_t i = 1; i < levels; ++i) {
    const double level = static_cast<double>(i) / static_cast<double>(levels - 1);
    if (i + 1 < levels) patches.push_back(in_codes({{level, level, level}}));
    if (ramps == chart_ramps::derived && i + 1 < levels) continue;
    patches.push_back(in_codes({{level, 0, 0}}));
    patches.push_back(in_codes({{0, level, 0}}));
    patches.push_back(in_codes({{0, 0, level}}));
  }
  return patches;
}

// Puts neighbours far apart: patch i comes at the fraction of (i + 1) times the golden ratio.
std::vector<chart_patch> scattered(const std::vector<chart_patch>& patches) {
  constexpr double golden = 0.6180339887498949;
  const auto time = [](std::size_t i) { return std::fmod(static_cast<double>(i + 1) * golden, 1.0); };
  std::vector<std::size_t> order(patches.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::ranges::sort(order, {}, time);
  std::vector<chart_patch> sorted;
  sorted.reserve(order.size());
  for (const std::size_t i : order) sorted.push_back(patches[i]);
  return sorted;
}

// What an sRGB display of gamma 2.2 shows, white at Y = 100 (matrix of IEC 61966-2-1).
vec3 expected_xyz(const vec3& drive) {
  constexpr mat3 primaries{{vec3{{41.24, 21.26, 1.93}}, vec3{{35.76, 71.52, 11.92}}, vec3{{18.05, 7.22, 95.05}}}};
  return primaries * vec3{{std::pow(drive[0], 2.2), std::pow(drive[1], 2.2), std::pow(drive[2], 2.2)}};
}

}  // namespace

std::vector<chart_patch> make_chart(std::size_t levels, chart_ramps ramps, std::size_t verify) {
  constexpr std::size_t between_whites = 20;
  constexpr std::size_t most_verify = 10000;
  if (levels < 5 || levels > 256) refuse_setting("levels", fmt::format("{}", levels), "expected 5 to 256");
  if (verify > most_verify) refuse_setting("verify", fmt::format("{}", verify), "expected at most 10000");
  std::vector<chart_patch> patches = ramp_patches(levels, ramps);
  append_spread(patches, verify - verify / 3, patch_anywhere);
  append_spread(patches, verify / 3, patch_near_gray);

  std::vector<chart_patch> chart;
  std::size_t since = between_whites;
  for (const chart_patch& patch : scattered(patches)) {
    if (since == between_whites) {
      chart.insert(chart.end(), {white, black});
      since = 0;
    }
    chart.push_back(patch);
    ++since;
  }
  chart.insert(chart.end(), {white, black});
  return chart;
}

std::string write_chart_ti1(std::span<const chart_patch> chart, std::string_view date) {
  std::string out = fmt::format(
      "CTI1   \n\nDESCRIPTOR \"Argyll Calibration Target chart information 1\"\nORIGINATOR \"corvantile-kit\"\n{}"
      "APPROX_WHITE_POINT \"95.050000 100.000000 108.900000\"\nCOLOR_REP \"RGB\"\n\n"
      "NUMBER_OF_FIELDS 7\nBEGIN_DATA_FORMAT\nSAMPLE_ID RGB_R RGB_G RGB_B XYZ_X XYZ_Y XYZ_Z\nEND_DATA_FORMAT\n\n"
      "NUMBER_OF_SETS {}\nBEGIN_DATA\n",
      date.empty() ? "" : fmt::format("CREATED \"{}\"\n", ascii(date)), chart.size());
  for (std::size_t i = 0; i < chart.size(); ++i) {
    const vec3 rgb = 100.0 * chart[i].drive, xyz = expected_xyz(chart[i].drive);
    fmt::format_to(std::back_inserter(out), "{} {:9.5f} {:9.5f} {:9.5f} {:9.5f} {:9.5f} {:9.5f}\n", i + 1, rgb[0],
                   rgb[1], rgb[2], xyz[0], xyz[1], xyz[2]);
  }
  return out + "END_DATA\n";
}

std::string write_chart_csv(std::span<const chart_patch> chart) {
  std::string out = "R,G,B,X (cd/m2),Y (cd/m2),Z (cd/m2)\n";
  for (const chart_patch& patch : chart) {
    const vec3 code = codes * patch.drive;
    fmt::format_to(std::back_inserter(out), "{:.0f},{:.0f},{:.0f},,,\n", code[0], code[1], code[2]);
  }
  return out;
}

std::string write_chart_hcfr(std::span<const chart_patch> chart) {
  std::string out;
  for (const chart_patch& patch : chart) {
    vec3 above_black;
    for (std::size_t c = 0; c < 3; ++c) above_black[c] = std::round(patch.drive[c] * 219);
    fmt::format_to(std::back_inserter(out), "{},{},{},{},\n", 16 + above_black[0], 16 + above_black[1],
                   16 + above_black[2], hcfr_patch_name(above_black / 219));
  }
  return out;
}

}  // namespace corvantile
