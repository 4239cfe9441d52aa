#include "corvantile/kit/exports.hpp"

#include <algorithm>
#include <fmt/format.h>

#include "corvantile/formats/calibration.hpp"
#include "corvantile/formats/writers/baked.hpp"
#include "corvantile/formats/writers/c_header.hpp"
#include "corvantile/formats/writers/cal.hpp"
#include "corvantile/formats/writers/clf.hpp"
#include "corvantile/formats/writers/cube.hpp"
#include "corvantile/formats/writers/icc_profile.hpp"
#include "corvantile/formats/writers/json.hpp"
#include "corvantile/formats/writers/kms.hpp"
#include "corvantile/formats/writers/memory_files.hpp"
#include "corvantile/formats/writers/mhc2.hpp"
#include "corvantile/formats/writers/spi.hpp"
#include "corvantile/kit/files.hpp"
#include "corvantile/kit/terminal.hpp"
#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/lut.hpp"
#include "corvantile/utils/version.hpp"

namespace corvantile::kit {
namespace {

constexpr std::size_t usual_grid = 33;
constexpr int rows_to_bake_from = 4096;

// The input of a writer.
struct export_subject {
  const job& of;
  const export_options& o;
  description about;
  std::optional<calibration_curves> compose;

  device_tables tables() const { return tables_of(of.result); }
  /// For formats that replace the calibration: resampled, then composed with it.
  device_tables composed(std::optional<std::size_t> entries = {}) const {
    device_tables t = tables();
    if (t.two_tables) return t;  // refused by the writer
    if (entries) t.post = resample(t.post, *entries);
    if (compose) t.post = compose_calibration(*compose, std::move(t.post));
    return t;
  }
  /// Fine tables for a 3D grid, which has few points at the dark end.
  device_tables to_bake() const {
    if (of.set().tlen >= rows_to_bake_from) return tables();
    settings finer = of.set();
    finer.tlen = rows_to_bake_from;
    return tables_of(solve(finer, of.file.samples, of.tone, of.result.factors));
  }
  double cd_m2(double Y) const { return of.file.known.absolute.value_or(false) ? Y : 0; }
};

// The corrected display, channel by channel, for a profile.
profiled_display behind_tables(const export_subject& s) {
  constexpr std::size_t points = 1024;
  const correction& result = s.of.result;
  const std::size_t last = result.gray.rows() - 1;
  const vec3 top = result.two ? vec3{{1, 1, 1}} : row3(result.gray, last);
  const vec3 dark = inp2out_vec(result.display, {});

  profiled_display display;
  display.white = inp2out_vec(result.display, top);
  display.luminance = s.cd_m2(display.white[1]);
  display.black_luminance = s.cd_m2(dark[1]);
  for (std::size_t c = 0; c < 3; ++c) {
    vec3 alone;
    alone[c] = top[c];
    display.colorants.col[c] = inp2out_vec(result.display, alone) - dark;
  }
  // Behind a clip, full drives may be out of reach, but the colours within reach follow the target's primaries.
  if (result.two && result.two->cmon.fe.clips) display.colorants = result.two->ref_smon.primaries;
  display.curves = matrix(points, 3);
  const std::vector<double> x = linspace(0.0, 1.0, points);
  const interpolator tone(result.tone);
  for (std::size_t c = 0; c < 3; ++c)
    std::ranges::transform(x, display.curves.col(c).begin(), [&](double v) { return std::clamp(tone(v), 0.0, 1.0); });
  return display;
}

exported one(const export_format& f, std::string bytes) { return {.files = {{f.usual_name, std::move(bytes)}}}; }
exported memories(memory_files made) { return {.files = std::move(made.files), .clamped = made.clamped}; }

using writer = exported (*)(const export_format&, const export_subject&);

struct entry {
  export_format format;
  writer write;
};

const std::vector<entry>& entries() {
  static const std::vector<entry> all{
      {{"clf", "Common LUT Format 3: colour pipelines, exact", true, "correction.clf", false},
       [](const auto& f, const export_subject& s) { return one(f, clf_file(s.tables(), s.about)); }},
      {{"spi", ".spi1d, .spimtx and an OpenColorIO configuration, exact", false, "spi", false},
       [](const auto&, const export_subject& s) { return exported{.files = spi_files(s.tables(), s.about)}; }},
      {{"cube", "one-dimensional .cube, exact for CV1", true, "correction-1d.cube", true},
       [](const auto& f, const export_subject& s) { return one(f, cube_file(s.composed(), s.about)); }},
      {{"cube3d", "three-dimensional .cube, baked: players, televisions, compositors", true, "correction-3d.cube",
        false},
       [](const auto& f, const export_subject& s) {
         return one(f, cube3d_file(s.to_bake(), s.o.size.value_or(usual_grid), s.about));
       }},
      {{"3dl", ".3dl of 12 bits, baked", true, "correction.3dl", false},
       [](const auto& f, const export_subject& s) {
         return one(f, threedl_file(s.to_bake(), s.o.size.value_or(usual_grid), s.about));
       }},
      {{"cal", "ArgyllCMS calibration, exact for CV1", true, "correction.cal", true},
       [](const auto& f, const export_subject& s) { return one(f, cal_file(s.composed(), s.about)); }},
      {{"icc", "display profile with vcgt, for CV1", true, "correction.icc", true},
       [](const auto& f, const export_subject& s) {
         const std::size_t n = s.o.entries.value_or(usual_vcgt_entries);
         const bool sensible = n >= 2 && n <= most_vcgt_entries;  // others are refused by the writer
         return one(f, icc_file(sensible ? s.composed(n) : s.tables(), behind_tables(s), s.about, n));
       }},
      {{"monitor-icc", "profile of the display as measured, for colour-managed desktops", true, "display.icc", false},
       [](const auto& f, const export_subject& s) {
         profiled_display display = as_measured(s.of.result.measured);
         display.luminance = s.cd_m2(s.of.result.measured.whitepoint[1]);
         display.black_luminance = s.cd_m2(s.of.result.measured.darklight[1]);
         return one(f, monitor_icc_file(display, s.about));
       }},
      {{"mhc2", "profile with the Windows MHC2 tag: two tables, the sRGB curve", true, "correction-mhc2.icc", false},
       [](const auto& f, const export_subject& s) {
         return one(f, mhc2_file(s.tables(), behind_tables(s), s.about, s.o.entries.value_or(1024)));
       }},
      {{"kms", "Linux DEGAMMA_LUT, CTM and GAMMA_LUT blobs", false, "kms", false},
       [](const auto&, const export_subject& s) {
         return exported{
             .files = kms_files(s.tables(), s.about, {.entries = s.o.entries.value_or(1024), .wide = s.o.wide})};
       }},
      {{"hex", "memory files for Verilog's $readmemh", false, "hex", false},
       [](const auto&, const export_subject& s) { return memories(hex_files(s.tables(), s.about, s.o.memory)); }},
      {{"mif", "memory initialisation files (.mif)", false, "mif", false},
       [](const auto&, const export_subject& s) { return memories(mif_files(s.tables(), s.about, s.o.memory)); }},
      {{"coe", "coefficient files (.coe)", false, "coe", false},
       [](const auto&, const export_subject& s) { return memories(coe_files(s.tables(), s.about, s.o.memory)); }},
      {{"c", "a C header", false, "c", false},
       [](const auto&, const export_subject& s) {
         return memories(c_header_files(s.tables(), s.about, s.o.memory));
       }},
      {{"json", "all tables with their axes, exact", true, "correction.json", false},
       [](const auto& f, const export_subject& s) { return one(f, json_file(s.tables(), s.about)); }},
  };
  return all;
}

// What to compose with, and what the file says about the calibration.
std::pair<std::optional<calibration_curves>, calibration_use> calibration_of(const export_format& format,
                                                                             const provenance& known,
                                                                             const std::string& asked) {
  std::optional<calibration_curves> curves = known.calibration;
  if (asked == "none") curves.reset();
  if (!asked.empty() && asked != "none") curves = read_calibration(asked, read_input(asked));
  if (!curves) return {std::nullopt, calibration_use::none};
  if (format.replaces_calibration) return {curves, calibration_use::composed};
  return {std::nullopt, calibration_use::in_force};
}

// The profile of the display as measured has no table to compose.
std::string words_about(calibration_use use, const export_format& format) {
  if (std::string_view(format.name) != "monitor-icc") return calibration_note(use);
  return use == calibration_use::none
             ? "The display as measured: no calibration was in effect, or it is to be ignored."
             : "The display as measured: keep the calibration loaded that was in effect.";
}

const entry& entry_named(const std::string& name) {
  const auto found = std::ranges::find_if(entries(), [&](const entry& e) { return name == e.format.name; });
  if (found == entries().end()) throw failure(fault::setting, "no such format: " + name);
  return *found;
}

std::string title_of(const provenance& known, const export_options& o) {
  if (!o.title.empty()) return o.title;
  if (!known.display.empty()) return known.display + ", corrected";
  return known.source.empty() ? "Corrected display" : known.source + ", corrected";
}

}  // namespace

const std::vector<export_format>& export_formats() {
  static const std::vector<export_format> formats = [] {
    std::vector<export_format> list;
    for (const entry& e : entries()) list.push_back(e.format);
    return list;
  }();
  return formats;
}

std::vector<std::string> format_names() {
  std::vector<std::string> names;
  for (const export_format& f : export_formats()) names.emplace_back(f.name);
  return names;
}

const export_format& format_named(const std::string& name) { return entry_named(name).format; }

exported export_job(const job& j, const export_options& o) {
  const auto& [format, write] = entry_named(o.format);
  const auto [compose, use] = calibration_of(format, j.file.known, o.calibration);
  const std::string words = words_about(use, format);
  const description about{
      .title = title_of(j.file.known, o),
      .comments = {fmt::format("Made by corvantile-kit {}, mode {}", CORVANTILE_VERSION, name_of(j.set().mode)),
                   words},
      .created = now()};
  exported made = write(format, {j, o, about, compose});
  made.calibration = use;
  made.calibration_words = words;
  return made;
}

}  // namespace corvantile::kit
