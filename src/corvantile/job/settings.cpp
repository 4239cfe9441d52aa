#include "corvantile/job/settings.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {
namespace {

struct named_mode {
  match_mode mode;
  std::string_view name, lower;
};
constexpr std::array<named_mode, 3> modes{
    {{match_mode::cv1, "CV1", "cv1"}, {match_mode::cv2, "CV2", "cv2"}, {match_mode::cv2_1, "CV2_1", "cv2_1"}}};

void require(bool good, std::string_view name, const std::string& value, std::string_view why) {
  if (!good) refuse_setting(name, value, why);
}
void require(bool good, std::string_view name, int value, std::string_view why) {
  require(good, name, integer_field(value), why);
}
void require(bool good, std::string_view name, double value, std::string_view why) {
  require(good, name, shortest(value), why);
}

void require_finite(std::string_view name, double value) {
  require(std::isfinite(value), name, value, "must be a finite number");
}

// Twice the area of the triangle a, b, c; positive if they are in counterclockwise order.
double turn(const vec2& a, const vec2& b, const vec2& c) {
  return (b[0] - a[0]) * (c[1] - a[1]) - (b[1] - a[1]) * (c[0] - a[0]);
}

// The target must be possible for a display: a triangle of primaries with the white inside.
void require_gamut(const chromaticity_table& target) {
  const auto& [red, green, blue, white] = target;
  const std::array in_order{white, red, green, blue};  // as settings list them
  std::string given;
  for (const vec2& xy : in_order) given += free_format(xy[0]) + free_format(xy[1]);
  given.erase(0, 1);
  for (const vec2& xy : in_order) {
    require(std::isfinite(xy[0]) && std::isfinite(xy[1]), "xytable", given, "must be finite numbers");
    require(xy[1] != 0, "xytable", given, "a y of 0 is not valid");
  }
  const double area = turn(red, green, blue);
  constexpr double flat = 1e-9;  // well above rounding, well below any display's
  require(std::abs(area) > flat, "xytable", given, "the primaries lie on one line");
  require(
      turn(red, green, white) * area > 0 && turn(green, blue, white) * area > 0 && turn(blue, red, white) * area > 0,
      "xytable", given, "the white must lie inside the triangle of the primaries");
}

void require_gray_ramp(const settings& s) {
  require_finite("temp", s.temp);
  require_finite("alpha", s.alpha);
  if (s.temp >= 0) {  // else these are not used
    require_finite("wptemp", s.wptemp);
    require_finite("beta", s.beta);
    require_finite("hwid", s.hwid);
  }
  if (!s.white) return;
  const auto& [x, y] = s.white->v;
  const std::string given = (free_format(x) + free_format(y)).substr(1);
  require(s.temp < 0, "white", given, "cannot be combined with temp: each sets the colour of the grays");
  require(std::isfinite(x) && std::isfinite(y) && x >= 0 && y > 0 && x + y <= 1, "white", given,
          "x must be 0 or more, y above 0, and x + y at most 1");
}

}  // namespace

std::optional<match_mode> mode_named(std::string_view name) {
  const auto* found =
      std::ranges::find_if(modes, [&](const named_mode& m) { return name == m.name || name == m.lower; });
  return found == modes.end() ? std::nullopt : std::optional(found->mode);
}

std::string_view name_of(match_mode mode) { return std::ranges::find(modes, mode, &named_mode::mode)->name; }

std::optional<gamut_mapping> gamut_mapping_named(std::string_view name) {
  for (const gamut_mapping mapping : {gamut_mapping::compress, gamut_mapping::clip})
    if (name == name_of(mapping)) return mapping;
  return std::nullopt;
}

std::string_view name_of(gamut_mapping mapping) { return mapping == gamut_mapping::clip ? "clip" : "compress"; }

gray_ramp_params gray_ramp_of(const settings& s) {
  return {.temp = s.temp,
          .wptemp = s.wptemp,
          .alpha = s.alpha,
          .beta = s.beta,
          .hwid = s.hwid,
          .white = s.white,
          .restart = s.restart};
}

void check_settings(const settings& s, bool power_law) {
  require(s.tlen >= 2, "tlen", s.tlen, "a table has at least 2 entries");
  constexpr int longest_table = 1 << 20;
  require(s.tlen <= longest_table, "tlen", s.tlen, "must be 1048576 or less");
  require(s.nbits >= 0 && s.nbits <= 31, "nbits", s.nbits, "must be in 0..31");
  require(s.numsegs < 0 || s.numsegs > 2, "numsegs", s.numsegs, "must be 3 or more, or negative for the default");
  // Time and memory of a fit grow with the square of its pieces. Beyond this, it takes minutes.
  constexpr int most_pieces = 256;
  require(s.numsegs <= most_pieces, "numsegs", s.numsegs, "must be 256 or less");
  require_finite("minslope", s.minslope);
  if (power_law) {
    require_finite("gamma", s.gamma);
    require(s.gamma > 0, "gamma", s.gamma, "the power law needs an exponent above 0");
  }
  if (matches_gray(s.mode)) require_gray_ramp(s);
  if (solves_two_tables(s.mode)) {
    require_gamut(s.xytable);
    if (s.gamut_mapping == gamut_mapping::compress) require_finite("boundary_tol", s.boundary_tol);
    require_finite("lumfrac", s.lumfrac);
    require(s.lumfrac > 0, "lumfrac", s.lumfrac, "must be above 0");
    require_finite("rowsum_margin", s.rowsum_margin);
    require(s.rowsum_margin < 1, "rowsum_margin", s.rowsum_margin, "must be below 1");
  }
}

}  // namespace corvantile
