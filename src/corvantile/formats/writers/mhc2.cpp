#include "corvantile/formats/writers/mhc2.hpp"

#include <algorithm>
#include <cmath>
#include <fmt/core.h>

#include "corvantile/colour/standards.hpp"
#include "corvantile/formats/writers/bytes.hpp"
#include "corvantile/matching/matching.hpp"
#include "corvantile/numerics/linsolv.hpp"

namespace corvantile {
namespace {

constexpr std::uint32_t matrix_offset = 36;           // the header's nine words
constexpr std::uint32_t tables_offset = 36 + 12 * 4;  // three rows of four

mat3 in_xyz(const mat3& k) {
  const mat3 rgb2xyz = c2rgb_type(srgb);
  return rgb2xyz * k * inv(rgb2xyz);
}

void append_header(std::string& out, std::size_t entries, const profiled_display& behind) {
  out = "MHC2";
  append_big_endian(out, std::uint32_t{0});
  append_big_endian(out, static_cast<std::uint32_t>(entries));
  append_s15fixed16(out, behind.black_luminance);
  append_s15fixed16(out, behind.luminance > 0 ? behind.luminance : 80);
  append_big_endian(out, matrix_offset);
  for (std::size_t c = 0; c < 3; ++c)
    append_big_endian(out, static_cast<std::uint32_t>(tables_offset + c * (8 + 4 * entries)));
}

void append_matrix(std::string& out, const mat3& m) {
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) append_s15fixed16(out, m(i, j));
    append_s15fixed16(out, 0);  // ignored
  }
}

raw_tag mhc2_tag(const device_tables& tables, const profiled_display& behind, std::size_t entries) {
  raw_tag tag{0x4D484332, {}};
  append_header(tag.bytes, entries, behind);
  append_matrix(tag.bytes, in_xyz(tables.mix));
  matrix curve(entries, 3);
  const std::vector<double> drive = linspace(0.0, 1.0, entries);
  device_tables last;
  last.post = tables.post;
  for (std::size_t i = 0; i < entries; ++i) {
    const double l = srgb_decode(drive[i]);
    set_row3(curve, i, corrected(last, {{l, l, l}}));
  }
  for (std::size_t c = 0; c < 3; ++c) {
    tag.bytes += "sf32";
    append_big_endian(tag.bytes, std::uint32_t{0});
    for (const double v : curve.col(c)) append_s15fixed16(tag.bytes, std::clamp(v, 0.0, 1.0));
  }
  return tag;
}

}  // namespace

double srgb_decode(double v) { return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4); }
double srgb_encode(double l) { return l <= 0.0031308 ? l * 12.92 : 1.055 * std::pow(l, 1 / 2.4) - 0.055; }

double distance_from_srgb(const matrix& pre) {
  const std::vector<double> drive = linspace(0.0, 1.0, pre.rows());
  double most = 0;
  for (std::size_t c = 0; c < 3; ++c)
    for (std::size_t i = 0; i < pre.rows(); ++i) most = std::max(most, std::abs(srgb_encode(pre(i, c)) - drive[i]));
  return most * 255;
}

std::string mhc2_file(const device_tables& tables, const profiled_display& behind, const description& about,
                      std::size_t entries) {
  require_tables("mhc2", tables);
  if (!tables.two_tables) {
    refuse_format("mhc2",
                  "a gray-axis correction has no pre-table; take icc, or solve with cvmode='CV2' and the sRGB curve "
                  "as gamma file (make --for windows does)");
  }
  const double distance = distance_from_srgb(tables.pre);
  if (!(distance <= srgb_tolerance)) {
    refuse_format("mhc2",
                  fmt::format("the sRGB curve is built into Windows, and the pre-table is up to {:.1f} codes of 255 "
                              "away from it (the limit is {}); solve with cvmode='CV2' and the sRGB curve as gamma "
                              "file (make --for windows does)",
                              distance, srgb_tolerance));
  }
  require_count("mhc2", "entries", entries, 2, 4096);
  return icc_profile("mhc2", behind, about, {mhc2_tag(tables, behind, entries)});
}

}  // namespace corvantile
