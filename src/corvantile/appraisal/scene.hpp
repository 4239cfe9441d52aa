#pragma once
// What the figures of a correction are computed from: the display without and with it, and the target.
//
// Drives are 0 to 1, X, Y, Z in the unit of the measurements, chromaticities x, y unless a name says u'v'.

#include <functional>
#include <optional>

#include "corvantile/colour/gray_factors.hpp"
#include "corvantile/job/correction.hpp"
#include "corvantile/job/device_tables.hpp"
#include "corvantile/job/settings.hpp"
#include "corvantile/job/test_ramps.hpp"
#include "corvantile/matching/matching.hpp"
#include "corvantile/monitor/monitor.hpp"
#include "corvantile/monitor/prepared.hpp"
#include "corvantile/numerics/matrix.hpp"

namespace corvantile {

/// A correction to judge. It does not own the display.
struct subject {
  const monitor& display;  ///< as measured, without a front end
  device_tables tables;    ///< of the device, with real entries
  int bits = 0;            ///< of the written entries; 0: reals

  vec2 white;                          ///< asked for in the grays
  std::optional<triangle> primaries;   ///< red, green, blue asked for; absent: the display's own
  std::function<double(double)> tone;  ///< the curve asked for, drive to 0..1, rising

  /// The gray match blends the dark into its target below this drive (setting `alpha`). If absent, the whole target
  /// includes the dark, as in the two-table solution.
  std::optional<double> dark_below{};

  gray_factors factors{};  ///< the wanted grays were multiplied by these: see `expected`
  double lumfrac = 1;      ///< the luminance asked for, as a fraction of the brightest possible
};

/// A solved job as a subject. `result` must outlive it.
subject subject_of(const correction& result, const settings& set);

/// The target as a display. Its channels add up, share one tone curve and reach `white` at full drive.
struct asked_display {
  mat3 primaries;                      ///< column c is X, Y, Z of channel c at full drive, less the dark
  vec3 white;                          ///< X, Y, Z at full drive, dark included
  vec3 dark;                           ///< X, Y, Z at zero drive
  std::function<double(double)> tone;  ///< drive to linear value, 0 to 1
  std::optional<double> dark_below;    ///< grays have the dark blended in below this drive; absent: all have it
};

/// `luminance` is that of white, dark included.
asked_display make_asked_display(const triangle& primaries, const vec2& white, double luminance, const vec3& dark,
                                 std::function<double(double)> tone);

vec3 asked_xyz(const asked_display& a, const vec3& drive);

/// The drive that asks for `xyz`, each channel limited to 0..1. Bisection on the tone curve, which rises.
vec3 asked_drive(const asked_display& a, const vec3& xyz);

/// Drive to X, Y, Z.
using shown_by = std::function<vec3(const vec3&)>;

constexpr vec3 gray(double s) { return {{s, s, s}}; }
constexpr bool is_gray(const vec3& u) { return u[0] == u[1] && u[1] == u[2]; }

/// CIE 1976 u'v' of a colour.
vec2 uv_of(const vec3& xyz);

/// CIEDE2000 of two colours seen against `white`.
double difference_of(const vec3& xyz1, const vec3& xyz2, const vec3& white);

/// A subject with its display and target ready for use. The subject must outlive it.
struct scene {
  const subject& of;
  prepared_monitor display;
  asked_display asked;

  /// Drive before the tables to the drive that the device sends.
  vec3 through(const vec3& u) const;
  vec3 before(const vec3& u) const { return display.inp2out(u[0], u[1], u[2]); }
  vec3 after(const vec3& u) const;
  /// The colour before the correction, scaled to the brightness of the target.
  vec3 scaled_before(const vec3& u) const;

  /// CIEDE2000 of `xyz` from what is asked for at `drive`, seen against the white asked for.
  double difference(const vec3& drive, const vec3& xyz) const;
};

scene make_scene(const subject& s);

}  // namespace corvantile
