#include "corvantile/formats/writers/icc_profile.hpp"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <lcms2.h>
#include <memory>
#include <new>
#include <type_traits>

#include "corvantile/formats/writers/bytes.hpp"
#include "corvantile/formats/writers/quantiser.hpp"
#include "corvantile/formats/writers/text_form.hpp"
#include "corvantile/numerics/linsolv.hpp"

namespace corvantile {
namespace {

template <auto release>
struct releaser {
  template <class T>
  void operator()(T* p) const {
    release(p);
  }
};
// Little CMS hands out its profiles and contexts as untyped pointers.
using context_handle = std::unique_ptr<std::remove_pointer_t<cmsContext>, releaser<cmsDeleteContext>>;
using profile_handle = std::unique_ptr<void, releaser<cmsCloseProfile>>;
using curve_handle = std::unique_ptr<cmsToneCurve, releaser<cmsFreeToneCurve>>;
using text_handle = std::unique_ptr<cmsMLU, releaser<cmsMLUfree>>;

// Little CMS fails only if memory runs out: its input was checked before.
template <class T>
T* made(T* p) {
  if (p == nullptr) throw std::bad_alloc();
  return p;
}
void require_written(bool ok) {
  if (!ok) throw std::bad_alloc();
}

cmsCIEXYZ to_cms(const vec3& v) { return {v[0], v[1], v[2]}; }

void write(void* profile, cmsTagSignature tag, const void* data) {
  require_written(cmsWriteTag(profile, tag, data) != 0);
}

void write_text(cmsContext context, void* profile, cmsTagSignature tag, const std::string& text) {
  const text_handle mlu(made(cmsMLUalloc(context, 1)));
  require_written(cmsMLUsetASCII(mlu.get(), "en", "US", text.c_str()) != 0);
  write(profile, tag, mlu.get());
}

void write_curve(cmsContext context, void* profile, cmsTagSignature tag, std::span<const double> samples) {
  quantiser code(16);
  std::vector<cmsUInt16Number> codes;
  for (const double v : samples) codes.push_back(static_cast<cmsUInt16Number>(code(v)));
  const curve_handle curve(
      made(cmsBuildTabulatedToneCurve16(context, static_cast<cmsUInt32Number>(codes.size()), codes.data())));
  write(profile, tag, curve.get());
}

// The colorants for the profile: scaled so that they sum to the white, then adapted to D50.
mat3 adapted_colorants(std::string_view format, const profiled_display& display, const mat3& adaptation) {
  const vec3 share = inv(display.colorants) * display.white;
  mat3 adapted;
  for (std::size_t c = 0; c < 3; ++c) {
    if (!(share[c] > 0) || !std::isfinite(share[c]))
      refuse_format(format, "the white is not a mixture of the three primaries: check the order of the measurements");
    adapted.col[c] = share[c] / display.white[1] * (adaptation * display.colorants.col[c]);
  }
  return adapted;
}

void write_colours(std::string_view format, void* profile, const profiled_display& display) {
  const mat3 adaptation = bradford_to_d50(display.white);
  const mat3 colorants = adapted_colorants(format, display, adaptation);
  const cmsCIEXYZ white = to_cms(display.white / display.white[1]);
  write(profile, cmsSigMediaWhitePointTag, &white);
  std::array<cmsFloat64Number, 9> chad{};
  for (std::size_t i = 0; i < 9; ++i) chad[i] = adaptation(i / 3, i % 3);
  write(profile, cmsSigChromaticAdaptationTag, chad.data());
  constexpr std::array tags = {cmsSigRedColorantTag, cmsSigGreenColorantTag, cmsSigBlueColorantTag};
  for (std::size_t c = 0; c < 3; ++c) {
    const cmsCIEXYZ colorant = to_cms(colorants.col[c]);
    write(profile, tags[c], &colorant);
  }
  if (display.luminance > 0) {
    const cmsCIEXYZ luminance = {0, display.luminance, 0};
    write(profile, cmsSigLuminanceTag, &luminance);
  }
}

void write_curves(cmsContext context, void* profile, const matrix& curves) {
  constexpr std::array tags = {cmsSigRedTRCTag, cmsSigGreenTRCTag, cmsSigBlueTRCTag};
  for (std::size_t c = 0; c < 3; ++c) write_curve(context, profile, tags[c], curves.col(c));
}

std::string serialised(void* profile) {
  cmsUInt32Number size = 0;
  require_written(cmsSaveProfileToMem(profile, nullptr, &size) != 0);
  std::string bytes(size, '\0');
  require_written(cmsSaveProfileToMem(profile, bytes.data(), &size) != 0);
  return bytes;
}

// Replaces the present time, which Little CMS writes into bytes 24 to 35: the same tables give the same bytes.
void stamp(std::string& bytes, std::chrono::sys_seconds t) {
  const auto day = std::chrono::floor<std::chrono::days>(t);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss time(t - day);
  std::string date_time;
  for (const long n :
       {static_cast<long>(static_cast<int>(date.year())), static_cast<long>(static_cast<unsigned>(date.month())),
        static_cast<long>(static_cast<unsigned>(date.day())), static_cast<long>(time.hours().count()),
        static_cast<long>(time.minutes().count()), static_cast<long>(time.seconds().count())})
    append_big_endian(date_time, static_cast<std::uint16_t>(n));
  bytes.replace(24, date_time.size(), date_time);
}

void require_display(std::string_view format, const profiled_display& display) {
  require_count(format, "points of a tone curve", display.curves.rows(), 2, 4096);
  if (!std::ranges::all_of(display.curves.data(), [](double v) { return std::isfinite(v); }))
    refuse_not_finite(format, "a point of a tone curve");
  const double brightest = std::max(display.luminance, display.black_luminance);
  if (!(brightest >= 0) || brightest > 32767)  // an s15Fixed16Number holds no more
    refuse_format(format, fmt::format("a profile cannot hold a luminance of {} cd/m2", brightest));
  if (!std::ranges::all_of(display.white.v, [](double v) { return v > 0 && std::isfinite(v); }))
    refuse_format(format, "X, Y and Z of the white must be above 0");
}

// Signature, reserved, kind 0 (a table), channels, entries, bytes per entry; then red, green, blue.
raw_tag vcgt(const matrix& table) {
  raw_tag tag{0x76636774, "vcgt"};
  append_big_endian(tag.bytes, std::uint32_t{0});
  append_big_endian(tag.bytes, std::uint32_t{0});
  append_big_endian(tag.bytes, std::uint16_t{3});
  append_big_endian(tag.bytes, static_cast<std::uint16_t>(table.rows()));
  append_big_endian(tag.bytes, std::uint16_t{2});
  quantiser code(16);
  for (const double v : table.data()) append_big_endian(tag.bytes, static_cast<std::uint16_t>(code(v)));
  return tag;
}

}  // namespace

mat3 bradford_to_d50(const vec3& white) {
  constexpr mat3 cone{{{{{0.8951, -0.7502, 0.0389}}, {{0.2664, 1.7135, -0.0685}}, {{-0.1614, 0.0367, 1.0296}}}}};
  constexpr vec3 pcs_white{{0.9642, 1.0, 0.8249}};
  const vec3 from = cone * (white / white[1]);
  const vec3 to = cone * pcs_white;
  mat3 gain;
  for (std::size_t c = 0; c < 3; ++c) gain(c, c) = to[c] / from[c];
  return inv(cone) * (gain * cone);
}

std::string icc_profile(std::string_view format, const profiled_display& display, const description& about,
                        const std::vector<raw_tag>& tags) {
  require_display(format, display);
  const context_handle context(made(cmsCreateContext(nullptr, nullptr)));
  const profile_handle handle(made(cmsCreateProfilePlaceholder(context.get())));
  void* profile = handle.get();
  cmsSetProfileVersion(profile, 2.4);
  cmsSetDeviceClass(profile, cmsSigDisplayClass);
  cmsSetColorSpace(profile, cmsSigRgbData);
  cmsSetPCS(profile, cmsSigXYZData);

  std::string rights = "No copyright, use freely.";
  for (const std::string& line : about.comments) append(rights, " {}", ascii(line));
  write_text(context.get(), profile, cmsSigProfileDescriptionTag, ascii(about.title));
  write_text(context.get(), profile, cmsSigCopyrightTag, rights);
  write_colours(format, profile, display);
  write_curves(context.get(), profile, display.curves);
  for (const raw_tag& tag : tags)
    require_written(cmsWriteRawTag(profile, static_cast<cmsTagSignature>(tag.signature), tag.bytes.data(),
                                   static_cast<cmsUInt32Number>(tag.bytes.size())) != 0);
  std::string bytes = serialised(profile);
  stamp(bytes, about.created);
  return bytes;
}

std::string icc_file(const device_tables& tables, const profiled_display& behind, const description& about,
                     std::size_t entries) {
  const matrix& table = require_one_table("icc", tables);
  require_count("icc", "entries", entries, 2, most_vcgt_entries);
  return icc_profile("icc", behind, about, {vcgt(resample(table, entries))});
}

profiled_display as_measured(const monitor& mon, std::size_t points) {
  profiled_display display;
  display.curves = inp2mon_mat(mon, in_all_channels(linspace(0.0, 1.0, points)));
  for (double& v : display.curves.data()) v = std::clamp(v, 0.0, 1.0);
  display.colorants = mon.RGB2XYZ;
  display.white = mon.whitepoint;
  return display;
}

std::string monitor_icc_file(const profiled_display& display, const description& about) {
  return icc_profile("monitor-icc", display, about);
}

}  // namespace corvantile
