#pragma once
// What the figures of a report are computed from: the display before and after its correction, and the target.

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "corvantile/colour/nonpar_monitor.hpp"
#include "corvantile/monitor/prepared.hpp"
#include "corvantile/report/gather.hpp"
#include "corvantile/report/page.hpp"
#include "corvantile/report/target.hpp"

namespace corvantile {

/// Drive to X, Y, Z.
using shown_by = std::function<vec3(const vec3&)>;

/// A ramp of the channels that are `on`.
struct mixture {
  const char* name;
  vec3 on;
};
inline constexpr std::array<mixture, 7> mixtures{{{"gray", {{1, 1, 1}}},
                                                  {"red", {{1, 0, 0}}},
                                                  {"green", {{0, 1, 0}}},
                                                  {"blue", {{0, 0, 1}}},
                                                  {"yellow", {{1, 1, 0}}},
                                                  {"magenta", {{1, 0, 1}}},
                                                  {"cyan", {{0, 1, 1}}}}};

constexpr vec3 gray(double s) { return {{s, s, s}}; }
constexpr bool is_gray(const vec3& u) { return u[0] == u[1] && u[1] == u[2]; }

/// CIE 1976 u'v' of a colour, and the distance of two chromaticities.
vec2 uv_of(const vec3& xyz);
double apart(const vec2& a, const vec2& b);

/// CIEDE2000 of two colours seen against `white`.
double difference_of(const vec3& xyz1, const vec3& xyz2, const vec3& white);

/// The states of one display, and what they are judged by. What it is made from must outlive it.
struct scene {
  const report_source& source;
  prepared_monitor display;
  asked_display asked;
  mat3 light;  ///< XYZ of Y = 1 to amounts of red, green and blue that are 1 each for the white asked for

  /// The device's drive for a drive before the tables.
  vec3 through(const vec3& u) const {
    const vec3 d = corrected(source.tables, u);
    return {{std::clamp(d[0], 0.0, 1.0), std::clamp(d[1], 0.0, 1.0), std::clamp(d[2], 0.0, 1.0)}};
  }
  vec3 before(const vec3& u) const { return display.inp2out(u[0], u[1], u[2]); }
  vec3 after(const vec3& u) const {
    const bool has_dark = asked.dark_below && is_gray(u);
    const double share = has_dark ? dark_share(u[0], *asked.dark_below) : 0;
    return expected(source.factors, u, before(through(u)), share * asked.dark);
  }
  /// The colour before the correction, as if it were as bright as the target.
  vec3 scaled_before(const vec3& u) const { return (asked.white[1] / before(gray(1))[1]) * before(u); }

  /// CIEDE2000 of `xyz` from what is asked for at `drive`, seen against the white asked for.
  double difference(const vec3& drive, const vec3& xyz) const {
    return difference_of(asked_xyz(asked, drive), xyz, asked.white);
  }
};

scene make_scene(const report_source& source);

/// The gray ramp that shows `xyz` at the rising drives `drive`. Local gamma needs a first drive of 0.
gray_curve curve_of(const scene& sc, std::vector<double> drive, const std::vector<vec3>& xyz);

/// A white and the luminance of the black that belongs to it.
white_record white_of(const vec3& xyz, double black, const vec2& asked);

/// Differences that come one by one, with words for where they were. What is not finite does not count.
class summary_of {
 public:
  void add(double difference, const std::string& where) {
    if (!std::isfinite(difference)) return;
    sum_ += difference;
    ++count_;
    if (count_ > 1 && difference <= s_.max) return;
    s_.max = difference;
    s_.where = where;
  }
  difference_summary result() const {
    difference_summary s = s_;
    if (count_ > 0) s.mean = sum_ / count_;
    return s;
  }

 private:
  difference_summary s_;
  double sum_ = 0;
  int count_ = 0;
};

/// "drive 12.5 %", and how closely grays of such differences follow their target, as an adverb.
std::string drive_text(double s);
const char* how_close(const difference_summary& gray);

}  // namespace corvantile
