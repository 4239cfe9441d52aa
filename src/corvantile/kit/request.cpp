#include "corvantile/kit/request.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <fmt/format.h>
#include <utility>

#include "corvantile/colour/standards.hpp"
#include "corvantile/documents/point_files.hpp"
#include "corvantile/kit/files.hpp"
#include "corvantile/kit/job_folder.hpp"
#include "corvantile/kit/terminal.hpp"
#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile::kit {
namespace {

constexpr int two_table_rows = 4096;

struct named_target {
  const char* name;
  const char* source;
  chromaticity_table xy;
};
constexpr std::array<named_target, 5> targets{{{"srgb", "sRGB, IEC 61966-2-1", srgb},
                                               {"rec709", "ITU-R BT.709", srgb},
                                               {"display-p3", "Display P3", display_p3},
                                               {"adobe-rgb", "Adobe RGB (1998)", adobe_rgb},
                                               {"bt2020", "ITU-R BT.2020", bt2020}}};

[[noreturn]] void refuse(const char* option, const std::string& value, const std::string& why) {
  throw failure(fault::setting, fmt::format("{} {}: {}", option, value, why));
}

vec3 mean_dark(const measurements& m) {
  const auto n = static_cast<std::size_t>(m.nramp);
  vec3 sum;
  for (std::size_t r = 1; r <= ramp_count(m.version); ++r)
    for (std::size_t c = 0; c < 3; ++c) sum[c] += m.data(r * n - 1, 3 + c);
  return sum / static_cast<double>(ramp_count(m.version));
}

vec3 first_white(const measurements& m) { return {{m.data(0, 3), m.data(0, 4), m.data(0, 5)}}; }

std::optional<vec2> two_numbers(const std::string& text) {
  const std::size_t comma = text.find(',');
  if (comma == std::string::npos) return std::nullopt;
  const auto x = parse_real(text.substr(0, comma));
  const auto y = parse_real(text.substr(comma + 1));
  if (!x || !y) return std::nullopt;
  return vec2{{*x, *y}};
}

struct chosen_white {
  vec2 xy;
  std::string why;
  bool native = false;
};

chosen_white choose_white(const std::string& asked, const vec2& of_target, const measurements& samples) {
  const vec2 native = chromaticity(first_white(samples));
  if (asked.empty()) return {of_target, "the target's own white"};
  if (asked == "native") return {native, "the display's own white, " + in_words(native), true};
  if (asked == "d65") return {d65, "D65"};
  if (asked == "d50") return {d50, "D50"};
  if (const auto kelvin = parse_real(asked)) {
    if (!(*kelvin >= 1667 && *kelvin <= 25000))
      refuse("--white", asked, "a temperature must be from 1667 to 25000 K");
    return {chromaticity(blackbody_color(*kelvin)), fmt::format("a black body of {} K", asked)};
  }
  const auto xy = two_numbers(asked);
  if (!xy) refuse("--white", asked, "expected native, d65, d50, a temperature in kelvin, or x,y");
  if (!((*xy)[0] > 0 && (*xy)[1] > 0 && (*xy)[0] + (*xy)[1] < 1))
    refuse("--white", asked, "x and y must be positive with a sum below 1");
  return {*xy, "as asked"};
}

void choose_tone(const request& asked, const measurements& samples, job_inputs& in) {
  const bool built_in =
      asked.gamma.empty() && facts_of(asked.for_device).srgb_curve && solves_two_tables(in.names.set.mode);
  const std::string curve = built_in ? "srgb" : asked.gamma.empty() ? "2.2" : asked.gamma;
  if (const auto exponent = parse_real(curve)) {
    if (!(*exponent > 0 && *exponent < 10)) refuse("--gamma", curve, "an exponent must be above 0 and below 10");
    in.names.set.gamma = *exponent;
    in.why["gamma"] = asked.gamma.empty() ? "the usual" : "as asked";
    return;
  }
  in.names.gamfile = folder::gamma;
  if (curve == "srgb" || curve == "bt1886" || curve == "lstar") {
    in.gamma = gamma_file_of(curve, first_white(samples)[1], mean_dark(samples)[1]);
    in.why["gamfile"] = built_in ? "Windows has the sRGB curve built in" : "the curve " + curve;
  } else {
    in.gamma = read_input(curve);
    parse_tone_samples(curve, *in.gamma);  // refuses bad content under the file's own name
    in.why["gamfile"] = "the curve of " + std::filesystem::path(curve).filename().string();
  }
}

void choose_gray_axis(const request& asked, const measurements& samples, job_inputs& in) {
  in.names.cvmode = "CV1";
  in.why["cvmode"] = "the display's own primaries: grays alone are corrected";
  const chosen_white white = choose_white(asked.white.empty() ? "native" : asked.white, {}, samples);
  if (!white.native) {
    in.names.set.white = white.xy;
    in.why["white"] = white.why;
  }
}

void choose_two_tables(const request& asked, const measurements& samples, job_inputs& in) {
  const auto* target = std::ranges::find_if(targets, [&](const named_target& t) { return asked.target == t.name; });
  if (target == targets.end()) refuse("--target", asked.target, "no such target");
  in.names.set.xytable = target->xy;
  const chosen_white white = choose_white(asked.white, target->xy.white, samples);
  in.why["xytable"] = "white (" + white.why + "), red, green, blue of " + target->source;
  in.names.set.xytable.white = white.xy;
  in.names.set.gamut_mapping = asked.gamut_mapping;
  in.why["gamut_mapping"] = asked.gamut_mapping == gamut_mapping::clip
                                ? "colours that the display can show are right; those out of reach clip"
                                : "as asked: primaries move into the display's gamut, and every colour with them";
  in.names.set.tlen = two_table_rows;
  in.why["tlen"] = "post-tables are even in light: the dark end needs many rows";
  in.names.cvmode = name_of(facts_of(asked.for_device).two_table_mode);
  if (facts_of(asked.for_device).two_table_mode == match_mode::cv2) {
    in.why["cvmode"] = "Windows has room for a matrix and one table behind the sRGB curve";
    return;
  }
  in.why["cvmode"] = "target primaries, and grays that keep to their white exactly";
  in.names.set.white = white.xy;
  in.why["white"] = white.why;
}

}  // namespace

std::vector<std::string> target_names() {
  std::vector<std::string> names{"native"};
  for (const named_target& t : targets) names.emplace_back(t.name);
  return names;
}

job_inputs inputs_for(const request& asked, const measurements& samples) {
  job_inputs in;
  in.names.wgfile = folder::measurements;
  if (asked.target == "native") {
    choose_gray_axis(asked, samples, in);
  } else {
    choose_two_tables(asked, samples, in);
  }
  name_mode(in.names);
  choose_tone(asked, samples, in);
  in.names.set.restart = true;
  in.why["restart"] = "grays that were not found are searched a second time";
  return in;
}

std::string gamma_file_of(const std::string& curve, double white, double black) {
  constexpr int points = 257;
  const double lw = std::pow(white, 1 / 2.4);
  const double lb = std::pow(std::max(black, 0.0), 1 / 2.4);
  const std::optional<double> exponent = parse_real(curve);
  const auto light = [&](double v) {
    if (exponent) return std::pow(v, *exponent);
    if (curve == "srgb") return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
    if (curve == "lstar") return v <= 0.08 ? v * 100 / 903.3 : std::pow((v * 100 + 16) / 116, 3.0);
    return std::pow(std::max(v * (lw - lb) + lb, 0.0), 2.4);
  };
  std::string text = fmt::format("{}\n", points);
  for (int i = 0; i < points; ++i) {
    const double v = static_cast<double>(i) / (points - 1);
    text += fmt::format("{}{}\n", i, free_format(light(v)));
  }
  return text;
}

}  // namespace corvantile::kit
