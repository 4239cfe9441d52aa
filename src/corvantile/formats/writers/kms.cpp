#include "corvantile/formats/writers/kms.hpp"

#include <cmath>
#include <cstdint>

#include "corvantile/formats/writers/bytes.hpp"
#include "corvantile/formats/writers/quantiser.hpp"
#include "corvantile/formats/writers/text_form.hpp"

namespace corvantile {
namespace {

// Red, green, blue and a reserved zero: 16 or 32 bits each.
std::string blob(const matrix& table, bool wide, std::size_t& clamped) {
  std::string out;
  quantiser code(wide ? 32 : 16);
  for (std::size_t i = 0; i < table.rows(); ++i) {
    for (std::size_t c = 0; c < 4; ++c) {
      const std::uint64_t v = c < 3 ? code(table(i, c)) : 0;
      if (wide) {
        append_little_endian(out, static_cast<std::uint32_t>(v));
      } else {
        append_little_endian(out, static_cast<std::uint16_t>(v));
      }
    }
  }
  clamped += code.clamped;
  return out;
}

// S31.32: bit 63 is the sign, the rest the magnitude.
std::uint64_t sign_magnitude(double v) {
  const double magnitude = std::round(std::ldexp(std::abs(v), 32));
  if (!(magnitude < 0x1p63))
    refuse_format("kms", "an entry of the matrix has more than 31 whole bits; take clf or spi");
  const std::uint64_t sign = v < 0 && magnitude > 0 ? std::uint64_t{1} << 63 : 0;
  return sign | static_cast<std::uint64_t>(magnitude);
}

// Row by row; the wide form has a fourth column, the offset.
std::string ctm(const mat3& m, bool wide) {
  std::string out;
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) append_little_endian(out, sign_magnitude(m(i, j)));
    if (wide) append_little_endian(out, std::uint64_t{0});
  }
  return out;
}

// The words of the kernel's two interfaces for the parts.
struct interface_words {
  const char *parts, *degamma, *ctm, *gamma, *entry, *matrix, *full_scale, *advice;
};
constexpr interface_words crtc = {
    "Properties of a CRTC",
    "DEGAMMA_LUT",
    "CTM",
    "GAMMA_LUT",
    "struct drm_color_lut: 8 bytes",
    "struct drm_color_ctm: 72 bytes",
    "0xffff",
    "The driver says in DEGAMMA_LUT_SIZE and GAMMA_LUT_SIZE how many entries it wants. A program that is DRM master\n"
    "makes a property blob of each file and sets it; what has no file stays unset.\n"};
constexpr interface_words pipeline = {
    "Operations of a plane's color pipeline",
    "1D LUT",
    "CTM 3x4",
    "1D LUT",
    "struct drm_color_lut32: 16 bytes",
    "struct drm_color_ctm_3x4: 96 bytes",
    "0xffffffff",
    "The driver says in each operation's SIZE how many entries it wants. A program that is DRM master makes a blob "
    "of\n"
    "each file and sets it as the operation's DATA; what has no file is bypassed.\n"};

std::string readme(const device_tables& tables, const description& about, const kms_options& options,
                   std::size_t clamped) {
  const interface_words& words = options.wide ? pipeline : crtc;
  std::string out =
      fmt::format("{}\n{}, in the order in which they are applied:\n\n", comment_lines(about, "#"), words.parts);
  const auto table = [&](const char* file, const char* part) {
    append(out, "{}: {}, {} entries ({}: red, green, blue, 0)\n", file, part, options.entries, words.entry);
  };
  if (tables.two_tables) {
    table("degamma_lut.bin", words.degamma);
    append(out, "ctm.bin: {}, row by row, S31.32 sign and magnitude ({})\n", words.ctm, words.matrix);
  }
  table("gamma_lut.bin", words.gamma);
  append(out, "\nAll numbers are little-endian; full scale is {}. {} entries had to be clamped to 0..1.\n{}",
         words.full_scale, clamped, words.advice);
  return out;
}

}  // namespace

std::vector<file_content> kms_files(const device_tables& tables, const description& about,
                                    const kms_options& options) {
  require_tables("kms", tables);
  require_count("kms", "entries", options.entries, 2, 65536);
  std::size_t clamped = 0;
  std::vector<file_content> files;
  if (tables.two_tables) {
    files.push_back({"degamma_lut.bin", blob(resample(tables.pre, options.entries), options.wide, clamped)});
    files.push_back({"ctm.bin", ctm(tables.mix, options.wide)});
  }
  files.push_back({"gamma_lut.bin", blob(resample(tables.post, options.entries), options.wide, clamped)});
  files.push_back({"README.txt", readme(tables, about, options, clamped)});
  return files;
}

}  // namespace corvantile
