#include "corvantile/formats/raw_readings.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/core.h>

#include "corvantile/formats/text_lines.hpp"
#include "corvantile/utils/failure.hpp"

namespace corvantile {
namespace {

constexpr double stray = 0.001;  // of full drive: rounding; some programs print a percentage of -0.001

std::string triple(const vec3& v) { return fmt::format("{} {} {}", v[0], v[1], v[2]); }

double brought_to_unit(const readings& into, const raw_reading& row, std::size_t channel, const drive_scale& scale) {
  const double d = (row.drive[channel] - scale.off) / (scale.full - scale.off);
  if (!(d >= -stray && d <= 1 + stray)) {
    refuse_line(into.source, row.line,
                expected_found(fmt::format("a drive from {} to {}", scale.off, scale.full),
                               fmt::format("{}", row.drive[channel])));
  }
  return std::clamp(d, 0.0, 1.0);
}

// Why a row cannot be used; null if it can.
const char* fault_of(const vec3& drive, const vec3& xyz) {
  constexpr double not_measured = -99999;
  constexpr double surely_lit = 0.2;
  constexpr double brightest = 1e12;  // the sun's disc has some 1.6e9 cd/m2
  if (!std::ranges::all_of(xyz.v, [](double v) { return std::abs(v) <= brightest; }))
    return "is not measurable light";
  if (std::ranges::min(xyz.v) < not_measured || xyz == vec3{{-1, -1, -1}}) return "was not measured";
  if (xyz == vec3{} && std::ranges::max(drive.v) >= surely_lit) return "failed";
  return nullptr;
}

}  // namespace

drive_scale guess_drive_scale(readings& into, std::span<const raw_reading> rows, const drive_scale& usual) {
  const raw_reading* largest = nullptr;
  double most = 0;
  double least = 0;
  for (const raw_reading& row : rows) {
    const auto [low, high] = std::ranges::minmax(row.drive.v);
    if (!largest || high > most) {
      largest = &row;
      most = high;
    }
    least = &row == &rows.front() ? low : std::min(least, low);
  }
  if (!largest) refuse_content(into.source, "no row holds a reading");

  constexpr std::array video{drive_scale{16, 235}, drive_scale{64, 940}};
  constexpr std::array plain{drive_scale{0, 1},    drive_scale{0, 100},  drive_scale{0, 255},
                             drive_scale{0, 1023}, drive_scale{0, 4095}, drive_scale{0, 65535}};
  const drive_scale* scale = std::ranges::find(video, drive_scale{least, most});
  if (scale == video.end()) {
    scale = std::ranges::find_if(plain, [&](const drive_scale& s) { return most <= s.full * (1 + stray); });
    if (scale == plain.end() || !(most > 0)) {
      refuse_line(into.source, largest->line,
                  expected_found("a largest drive above 0 and up to 65535", fmt::format("{}", most)));
    }
  }
  if (*scale == usual) return usual;
  into.notes.add(
      {fmt::format("drive values are taken as {} to {}: the largest is {}.", scale->off, scale->full, most),
       largest->line});
  return *scale;
}

void append_rows(readings& into, std::span<const raw_reading> rows, const drive_scale& scale) {
  into.rows.reserve(into.rows.size() + rows.size());
  for (const raw_reading& row : rows) {
    reading r{{}, row.xyz, row.line};
    for (std::size_t c = 0; c < 3; ++c) r.drive[c] = brought_to_unit(into, row, c, scale);
    if (const char* why = fault_of(r.drive, r.xyz)) {
      into.notes.drop(row.line, [&] {
        return fmt::format("the reading {} of drive {} {}.", triple(row.xyz), triple(row.drive), why);
      });
    } else {
      into.rows.push_back(r);
    }
  }
  if (into.rows.empty()) refuse_content(into.source, "none of its rows holds a reading; measure the patches first");
}

vec3 xyz_of_xyY(double x, double y, double luminance) {
  if (luminance == 0) return {};
  return {{x * luminance / y, luminance, (1 - x - y) * luminance / y}};
}

}  // namespace corvantile
