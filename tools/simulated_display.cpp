#include "tools/simulated_display.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <functional>
#include <initializer_list>
#include <system_error>
#include <type_traits>
#include <variant>
#include <vector>

#include "corvantile/colour/chromaticity.hpp"

namespace corvantile {
namespace {

/// splitmix64 (Steele, Lea and Flood, OOPSLA 2014). The standard library's distributions may differ between
/// implementations; this gives the same numbers everywhere.
struct generator {
  std::uint64_t state;

  std::uint64_t next() {
    state += 0x9e3779b97f4a7c15u;
    std::uint64_t z = state;
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9u;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebu;
    return z ^ (z >> 31);
  }
  double uniform() { return static_cast<double>(next() >> 11) * 0x1p-53; }  // in [0, 1)
  double between(double lo, double hi) { return lo + (hi - lo) * uniform(); }
  /// Mean 0 and variance 1, close enough to a normal deviate: twelve uniforms, no logarithm.
  double deviate() {
    double s = -6;
    for (int i = 0; i < 12; ++i) s += uniform();
    return s;
  }
};

constexpr std::uint64_t extra_stream = 0x5eed'0f'e17a'5a3bu;  // keeps the ramps the same for any `extra`

/// Chromaticity of the red primary: on the line z = 0 if it is to have no Z.
vec2 red_xy(const simulated_display& d) { return d.dark_red_z ? vec2{{d.red[0], 1 - d.red[0]}} : d.red; }

/// Luminance of each primary in a white of luminance 1.
vec3 shares(const simulated_display& d) {
  const vec3 r = xy2xyz(red_xy(d)), g = xy2xyz(d.green), b = xy2xyz(d.blue), w = xy2xyz(d.white);
  const double whole = determinant({{r, g, b}});
  return {{determinant({{w, g, b}}) / whole, determinant({{r, w, b}}) / whole, determinant({{r, g, w}}) / whole}};
}

bool whole_drives(const simulated_display& d) {
  return d.drive > 100 && d.drive == std::floor(d.drive) && d.levels - 1 <= d.drive;
}

/// A drive value as in the file: whole if the scale has enough whole numbers, otherwise with six decimals.
double written_drive(const simulated_display& d, double u) {
  const double step = whole_drives(d) ? 1 : 1e6;
  return std::round(u * d.drive * step) / step;
}

std::string text_of(double v) {  // the shortest text that reads back as v
  std::array<char, 32> buf{};
  return {buf.data(), std::to_chars(buf.data(), buf.data() + buf.size(), v).ptr};
}

std::string fixed(double v, int decimals) {
  std::array<char, 400> buf{};
  return {buf.data(), std::to_chars(buf.data(), buf.data() + buf.size(), v, std::chars_format::fixed, decimals).ptr};
}

/// v and its decimal exponent, both after rounding to the given number of significant digits.
struct rounded {
  double value;
  int exponent;
};
rounded round_to(double v, int digits) {
  std::array<char, 40> buf{};
  const char* end =
      std::to_chars(buf.data(), buf.data() + buf.size(), v, std::chars_format::scientific, digits - 1).ptr;
  rounded r{0, 0};
  std::from_chars(buf.data(), end, r.value);
  const char* e = std::find(static_cast<const char*>(buf.data()), end, 'e') + 1;
  std::from_chars(e + (*e == '+' ? 1 : 0), end, r.exponent);
  return r;
}

std::string reading_text(double v, int digits) {
  const rounded r = round_to(v, digits);
  return fixed(r.value, std::max(0, digits - 1 - (r.value == 0 ? 0 : r.exponent)));
}

// -------------------------------------------------------------------------------------------- parameters by name

using target = std::variant<int*, double*, bool*, std::uint64_t*, vec2*, vec3*>;

struct parameter {
  const char* key;
  std::function<target(simulated_display&)> where;
  const char* meaning;
  bool listed_if_set = false;  // added later: files of displays without it stay as they were
};

const std::vector<parameter>& parameters() {
  using s = simulated_display;
  static const std::vector<parameter> all{
      {"levels", [](s& d) -> target { return &d.levels; }, "samples in a ramp, at least 2"},
      {"version", [](s& d) -> target { return &d.version; }, "1: seven ramps, 2: four ramps"},
      {"extra", [](s& d) -> target { return &d.extra; }, "random samples after the ramps"},
      {"white_luminance", [](s& d) -> target { return &d.white_luminance; }, "cd/m2, dark light included"},
      {"black_luminance", [](s& d) -> target { return &d.black_luminance; }, "cd/m2 at zero drive"},
      {"red", [](s& d) -> target { return &d.red; }, "chromaticity x,y of the red primary"},
      {"green", [](s& d) -> target { return &d.green; }, "... of the green primary"},
      {"blue", [](s& d) -> target { return &d.blue; }, "... of the blue primary"},
      {"white", [](s& d) -> target { return &d.white; }, "... of the white"},
      {"gamma", [](s& d) -> target { return &d.gamma; }, "exponents of the tone curves, one per channel"},
      {"toe", [](s& d) -> target { return &d.toe; }, "0..1, lifts the darkest levels"},
      {"s_shape", [](s& d) -> target { return &d.s_shape; }, "0..1, bends the tone curves over near full drive"},
      {"nX", [](s& d) -> target { return &d.nX; }, "-1..1, quadratic shape of X over luminance, per channel"},
      {"nZ", [](s& d) -> target { return &d.nZ; }, "-1..1, quadratic shape of Z over luminance, per channel"},
      {"noise", [](s& d) -> target { return &d.noise; }, "0..1, relative standard deviation of a reading"},
      {"seed", [](s& d) -> target { return &d.seed; }, "of the noise and of the extra samples"},
      {"digits", [](s& d) -> target { return &d.digits; }, "1..17, significant digits of a reading"},
      {"drive", [](s& d) -> target { return &d.drive; }, "drive value of full drive: 255, 100, 1, ..."},
      {"dark_red_z", [](s& d) -> target { return &d.dark_red_z; }, "1: red adds no Z at all to the dark's"},
      {"crosstalk", [](s& d) -> target { return &d.crosstalk; },
       "0..1, share of its light lost to the next channel, if full", true},
      {"power_limit", [](s& d) -> target { return &d.power_limit; }, "0..1, share of its light that full white loses",
       true},
      {"dynamic_backlight", [](s& d) -> target { return &d.dynamic_backlight; },
       "0..1, share of its light that black loses", true},
  };
  return all;
}

template <class Vec, std::size_t N>
std::string joined(const Vec& v) {
  std::string out = text_of(v[0]);
  for (std::size_t i = 1; i < N; ++i) out.append(",").append(text_of(v[i]));
  return out;
}

std::string value_text(const target& t) {
  return std::visit(
      [](const auto* p) -> std::string {
        using type = std::remove_cvref_t<decltype(*p)>;
        if constexpr (std::is_same_v<type, double>) {
          return text_of(*p);
        } else if constexpr (std::is_same_v<type, vec2>) {
          return joined<vec2, 2>(*p);
        } else if constexpr (std::is_same_v<type, vec3>) {
          return joined<vec3, 3>(*p);
        } else {
          return std::to_string(*p);
        }
      },
      t);
}

/// Reads one number that fills the whole text.
template <class T>
bool read_number(const std::string& text, T& v) {
  const char* end = text.data() + text.size();
  const auto [at, error] = std::from_chars(text.data(), end, v);
  return error == std::errc{} && at == end;
}

template <class Vec, std::size_t N>
bool read_numbers(const std::string& text, Vec& v) {
  std::size_t from = 0;
  for (std::size_t i = 0; i < N; ++i) {
    const std::size_t to = i + 1 < N ? text.find(',', from) : text.size();
    if (to == std::string::npos || !read_number(text.substr(from, to - from), v[i])) return false;
    from = to + 1;
  }
  return true;
}

bool read_value(const std::string& text, const target& t) {
  return std::visit(
      [&](auto* p) {
        using type = std::remove_cvref_t<decltype(*p)>;
        if constexpr (std::is_same_v<type, bool>) {
          *p = text == "1";
          return text == "0" || text == "1";
        } else if constexpr (std::is_same_v<type, vec2>) {
          return read_numbers<vec2, 2>(text, *p);
        } else if constexpr (std::is_same_v<type, vec3>) {
          return read_numbers<vec3, 3>(text, *p);
        } else {
          return read_number(text, *p);
        }
      },
      t);
}

}  // namespace

std::string problem(const simulated_display& d) {
  const auto within = [](double v, double lo, double hi) { return v >= lo && v <= hi; };  // false for NaN
  if (!within(d.levels, 2, 100000)) return "levels must be 2 to 100000";
  if (d.version != 1 && d.version != 2) return "version must be 1 or 2";
  if (!within(d.extra, 0, 1000000)) return "extra must be 0 to 1000000";
  if (!within(d.white_luminance, 1e-3, 1e6)) return "white_luminance must be 0.001 to 1000000";
  if (!(d.black_luminance >= 0 && d.black_luminance < d.white_luminance)) {
    return "black_luminance must be at least 0 and below white_luminance";
  }
  for (const vec2& xy : {d.red, d.green, d.blue, d.white}) {
    if (!within(xy[0], 0, 1) || !within(xy[1], 1e-6, 1) || !(xy[0] + xy[1] <= 1 + 1e-12))
      return "chromaticities must be 0 to 1, y above 0, x + y at most 1";
  }
  const vec3 share = shares(d);
  for (std::size_t c = 0; c < 3; ++c) {
    if (!within(share[c], 1e-9, 1)) return "white must lie inside the triangle of the primaries";
    if (!within(d.gamma[c], 0.1, 10)) return "gamma must be 0.1 to 10";
    if (!within(d.nX[c], -1, 1) || !within(d.nZ[c], -1, 1)) return "nX and nZ must be -1 to 1";
  }
  if (!within(d.toe, 0, 1)) return "toe must be 0 to 1";
  if (!within(d.s_shape, 0, 1)) return "s_shape must be 0 to 1";
  if (!within(d.noise, 0, 1)) return "noise must be 0 to 1";
  for (const double k : d.crosstalk.v) {
    if (!within(k, 0, 1)) return "crosstalk must be 0 to 1";
  }
  if (!within(d.power_limit, 0, 1)) return "power_limit must be 0 to 1";
  if (!within(d.dynamic_backlight, 0, 1)) return "dynamic_backlight must be 0 to 1";
  if (!within(d.digits, 1, 17)) return "digits must be 1 to 17";
  if (!within(d.drive, 1e-3, 1e6)) return "drive must be 0.001 to 1000000";
  return {};
}

double tone(const simulated_display& d, std::size_t c, double u) {
  const double g = d.gamma[c], foot = std::pow(d.toe, g);
  const double p = (std::pow(u + d.toe, g) - foot) / (std::pow(1 + d.toe, g) - foot);
  return (1 - d.s_shape) * p + d.s_shape * p * p * (3 - 2 * p);
}

mat3 primaries(const simulated_display& d) {
  const vec3 share = shares(d);
  const double full = d.white_luminance - d.black_luminance;
  mat3 m{{full * share[0] * xy2xyz(red_xy(d)), full * share[1] * xy2xyz(d.green), full * share[2] * xy2xyz(d.blue)}};
  if (d.dark_red_z) m(2, 0) = 0;  // 1 - x - y may leave a rounding error
  return m;
}

vec3 dark_light(const simulated_display& d) { return d.black_luminance * xy2xyz(d.white); }

/// Luminance fractions of the channels, less what they take from each other.
static vec3 channels(const simulated_display& d, const vec3& drive) {
  const vec3 alone{{tone(d, 0, drive[0]), tone(d, 1, drive[1]), tone(d, 2, drive[2])}};
  vec3 m;
  for (std::size_t c = 0; c < 3; ++c) m[c] = alone[c] * (1 - d.crosstalk[c] * alone[(c + 1) % 3]);
  return m;
}

/// The share of the backlight that a picture with this drive leaves on.
static double backlight(const simulated_display& d, const vec3& drive) {
  return 1 - d.dynamic_backlight * (1 - (drive[0] + drive[1] + drive[2]) / 3);
}

/// The light above the dark, before the backlight dims.
static vec3 light(const simulated_display& d, const mat3& full, const vec3& drive) {
  const vec3 channel = channels(d, drive);
  vec3 sum;
  for (std::size_t c = 0; c < 3; ++c) {
    const double m = channel[c];
    const vec3 fraction{{(1 - d.nX[c]) * m + d.nX[c] * m * m, m, (1 - d.nZ[c]) * m + d.nZ[c] * m * m}};
    for (std::size_t i = 0; i < 3; ++i) sum[i] += full(i, c) * fraction[i];
  }
  return (1 - d.power_limit * (channel[0] + channel[1] + channel[2]) / 3) * sum;
}

vec3 shown(const simulated_display& d, const vec3& drive) {
  return backlight(d, drive) * (light(d, primaries(d), drive) + dark_light(d));
}

namespace {

/// The instrument in front of the display.
class instrument {
 public:
  explicit instrument(const simulated_display& d)
      : d_(d), full_(primaries(d)), dark_(dark_light(d)), noise_{d.seed} {}

  vec3 read(const vec3& drive) {
    const vec3 above = light(d_, full_, drive);
    const double lit = backlight(d_, drive);
    vec3 xyz;
    for (std::size_t i = 0; i < 3; ++i) {
      xyz[i] = round_to(lit * (dark_[i] + above[i] * (1 + d_.noise * noise_.deviate())), d_.digits).value;
    }
    return xyz;
  }

 private:
  const simulated_display& d_;
  mat3 full_;
  vec3 dark_;
  generator noise_;
};

}  // namespace

matrix sample_rows(const simulated_display& d) {
  constexpr std::array<vec3, 7> ramps{{{{1, 1, 1}},
                                       {{1, 0, 0}},
                                       {{0, 1, 0}},
                                       {{0, 0, 1}},  // white, red, green, blue
                                       {{1, 1, 0}},
                                       {{1, 0, 1}},
                                       {{0, 1, 1}}}};  // yellow, magenta, cyan
  const std::size_t nramps = d.version == 1 ? 7 : 4, levels = static_cast<std::size_t>(d.levels);
  matrix out(nramps * levels + static_cast<std::size_t>(d.extra), 6);
  instrument eye(d);

  std::size_t row = 0;
  const auto measure = [&](const vec3& written) {
    const vec3 xyz = eye.read(written / d.drive);
    for (std::size_t i = 0; i < 3; ++i) {
      out(row, i) = written[i];
      out(row, i + 3) = xyz[i];
    }
    ++row;
  };
  for (std::size_t r = 0; r < nramps; ++r) {
    for (std::size_t i = levels; i-- > 0;) {
      measure(written_drive(d, static_cast<double>(i) / (d.levels - 1)) * ramps[r]);
    }
  }
  generator colours{d.seed ^ extra_stream};
  while (row < out.rows()) {
    vec3 written;
    for (std::size_t c = 0; c < 3; ++c) written[c] = written_drive(d, colours.uniform());
    measure(written);
  }
  return out;
}

std::string measurement_text(const simulated_display& d) {
  std::string out = "; A SIMULATED display: these readings were computed, no real display was measured.\n";
  out += "; Made by: simulate_display";
  if (const std::string words = arguments(d); !words.empty()) out.append(" ").append(words);
  out += "\n; All parameters:\n";
  simulated_display copy = d;
  simulated_display plain;
  for (const parameter& p : parameters()) {
    if (p.listed_if_set && value_text(p.where(copy)) == value_text(p.where(plain))) continue;
    out += ";   " + std::string(p.key) + "=" + value_text(p.where(copy)) + "  (" + p.meaning + ")\n";
  }
  out += "; Next line: levels in a ramp, extra samples, version. Then R G B X Y Z, XYZ in cd/m2.\n";
  out += std::to_string(d.levels) + " " + std::to_string(d.extra) + " " + std::to_string(d.version) + "\n";

  const matrix all = sample_rows(d);
  const int decimals = whole_drives(d) ? 0 : 6;
  for (std::size_t i = 0; i < all.rows(); ++i) {
    for (std::size_t j = 0; j < 3; ++j) out += fixed(all(i, j), decimals) + " ";
    for (std::size_t j = 3; j < 6; ++j) out += reading_text(all(i, j), d.digits) + (j < 5 ? " " : "\n");
  }
  return out;
}

std::string readings_table(const simulated_display& d, std::span<const vec3> asked,
                           const std::function<vec3(const vec3&)>& loaded) {
  std::string out = "R G B X(cd/m2) Y(cd/m2) Z(cd/m2)\n";
  instrument eye(d);
  for (const vec3& drive : asked) {
    const vec3 xyz = eye.read(loaded(drive));
    for (const double v : drive.v) out += text_of(v) + " ";
    for (std::size_t j = 0; j < 3; ++j) out += reading_text(xyz[j], d.digits) + (j < 2 ? " " : "\n");
  }
  return out;
}

std::string arguments(const simulated_display& d) {
  simulated_display copy = d, plain;
  std::string out;
  for (const parameter& p : parameters()) {
    const std::string value = value_text(p.where(copy));
    if (value == value_text(p.where(plain))) continue;
    if (!out.empty()) out += " ";
    out += std::string(p.key) + "=" + value;
  }
  return out;
}

std::string set_parameter(simulated_display& d, const std::string& word) {
  const std::size_t equals = word.find('=');
  const std::string key = word.substr(0, equals);
  for (const parameter& p : parameters()) {
    if (key != p.key) continue;
    if (equals == std::string::npos) return "expected " + key + "=value";
    if (read_value(word.substr(equals + 1), p.where(d))) return {};
    return "bad value in " + word + " (" + p.meaning + ")";
  }
  return "no such parameter: " + key;
}

std::string parameter_help() {
  simulated_display plain;
  std::string out;
  for (const parameter& p : parameters()) {
    std::string line = "  " + std::string(p.key) + "=" + value_text(p.where(plain));
    line.resize(std::max<std::size_t>(line.size() + 2, 26), ' ');
    out += line + p.meaning + "\n";
  }
  return out;
}

simulated_display random_display(std::uint64_t seed) {
  generator g{seed};
  const auto near = [&](const vec2& xy, double d) {
    return vec2{{xy[0] + g.between(-d, d), xy[1] + g.between(-d, d)}};
  };
  simulated_display d;
  d.seed = seed;
  const double u = g.uniform();
  d.white_luminance = std::round(10 * (60 + 940 * u * u)) / 10;  // most displays are rather dim
  d.black_luminance = d.white_luminance / g.between(500, 5000);
  const double wide = g.uniform();  // from the standard gamut to a wide one
  d.red = near({{0.64 + 0.04 * wide, 0.33 - 0.015 * wide}}, 0.003);
  d.green = near({{0.30 - 0.09 * wide, 0.60 + 0.1 * wide}}, 0.01);
  d.blue = near({{0.15, 0.06}}, 0.008);
  const double warm = g.uniform();  // along daylight, from about 10 000 K to 5000 K
  d.white = near({{0.280 + 0.065 * warm, 0.292 + 0.066 * warm}}, 0.004);
  for (std::size_t c = 0; c < 3; ++c) {
    d.gamma[c] = g.between(1.9, 2.5);
    d.nX[c] = g.between(-0.03, 0.08);
    d.nZ[c] = g.between(-0.05, 0.1);
  }
  d.toe = g.between(0, 0.03);
  d.s_shape = g.between(0, 0.3);
  d.noise = g.between(0, 0.002);
  constexpr std::array<int, 5> counts{9, 17, 18, 33, 52};
  d.levels = counts[static_cast<std::size_t>(g.next() % counts.size())];
  d.version = g.next() % 4 == 0 ? 1 : 2;
  return d;
}

}  // namespace corvantile
