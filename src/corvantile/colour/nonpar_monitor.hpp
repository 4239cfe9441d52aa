#pragma once
// The monitor model run backwards: from a wanted colour to drive values, and from a wanted white and tone curve to
// the drive values of a whole gray ramp. There is no closed-form inverse, so everything here searches.

#include <optional>
#include <span>

#include "corvantile/colour/gray_factors.hpp"
#include "corvantile/colour/gray_search.hpp"
#include "corvantile/monitor/monitor.hpp"
#include "corvantile/monitor/prepared.hpp"
#include "corvantile/numerics/conic_intersect.hpp"
#include "corvantile/utils/lut.hpp"

namespace corvantile {

// ---- From XYZ to the device ----

/// A colour counts as shown if its squared XYZ distance is below this. The value is absolute: meant for measurements
/// in cd/m2, or with white near 100; too wide for white at 1.
inline constexpr double reachable = 1e-7;

/// Squared XYZ distance between a target and what the monitor shows for the inputs sin(a)^2.
struct cost2i {
  const prepared_monitor& mon;
  const vec3& xyz;  // target, in the units of the measurements
  double operator()(std::span<const double> a) const {
    return dist2(mon.inp2out(square_of_sine(a[0]), square_of_sine(a[1]), square_of_sine(a[2])), xyz);
  }
  /// The same if it is below `limit`, otherwise some number not below `limit`.
  double operator()(std::span<const double> a, double limit) const {
    return mon.inp2out_dist2(square_of_sine(a[0]), square_of_sine(a[1]), square_of_sine(a[2]), xyz, limit);
  }
};

/// What an inversion found: inputs or monitor values in [0, 1], and the remaining squared XYZ distance. Out of gamut,
/// that is the (locally) closest reachable colour; the caller decides whether it is close enough.
struct inversion {
  vec3 value;
  double fval = 0;
};

/// Inputs that show `xyz`. The search starts from `start`, or from the linear model's answer. A starting value that
/// is 1 or more, negative or NaN means full drive.
inversion out2inp(const monitor& mon, const vec3& xyz, const std::optional<vec3>& start = {});

// ---- The brightest colour of a white ----

/// The top for the chromaticity of a blackbody at `T` kelvin. 28 bisections find the largest scale in [0.1, 2], times
/// the monitor's white luminance, that an inversion reaches to within `reachable`.
ramp_top ramptop_temp(const monitor& mon, double T);

/// The top for a chromaticity x, y.
ramp_top ramptop_xyz(const monitor& mon, const vec2& xy);

/// The brightest top on the line of constant colour temperature `T`, within `hwid` (CIE 1960 uv) of the blackbody
/// locus. Deliberately that of the search's last evaluation, not of its best point; the two differ by rounding only.
ramp_top bcgtw(const monitor& mon, double T, double hwid);

// ---- Gray ramps ----

/// The share of the dark light in a gray ramp's target at position `s`: w(s) of `colortemp_lut`.
double dark_share(double s, double g0);

/// The power law y = x^gamma at n evenly spaced points, n at least 2.
lut make_gamma_table(double gamma, int n);

/// Fills `tab` (n x 3, n at least 2) with the drive values of a gray ramp that has the colour of a blackbody at `T`
/// kelvin and, relative to its top, the luminance `curve`(s) at the positions s = i / (n - 1). `hwid` > 0 looks for a
/// brighter top across the locus. No display gets darker than its dark light, so that light is blended in below the
/// position `g0` (`alpha` in the settings). The target is
///   curve(s) top + w(s) dark,  w(s) = (1 + cos(pi s / g0)) / 2 for s <= g0, else 0
/// All of the dark light is there at s = 0 and none from g0 on, and the weight has no kink at either end.
///
/// Each level is searched from the drive values of the level above it, so one search that ends in a false minimum
/// misleads the next ones. With `restart`, levels that stayed further than `reachable` from their target are searched
/// again, from the linear model's answer and from their neighbours. The others keep their bits.
///
/// With `factors`, the target above is multiplied by them, and the top is the brightest colour that has the
/// temperature once it is divided by them. They cannot be combined with a swath: if there are factors, `hwid` must be
/// 0.
gray_search colortemp_lut(matrix& tab, const monitor& mon, double T, const lut& curve, double g0, double hwid,
                          bool restart = false, const gray_factors& factors = {});

/// The same for a constant chromaticity x, y.
gray_search chromaticity_lut(matrix& tab, const monitor& mon, const vec2& xy, const lut& curve, double g0,
                             bool restart = false, const gray_factors& factors = {});

// ---- Held ready: no job calls these ----

/// `cost2i` for the monitor values sin(a)^2.
struct cost2m {
  const prepared_monitor& mon;
  const vec3& xyz;
  double operator()(std::span<const double> a) const {
    const vec3 m{{square_of_sine(a[0]), square_of_sine(a[1]), square_of_sine(a[2])}};
    return dist2(mon.mon2out(m), xyz);
  }
};

/// Monitor values that show `xyz`, searched in the way of `out2inp`.
inversion out2mon(const monitor& mon, const vec3& xyz, const std::optional<vec3>& start = {});

/// `ramptop_xyz` and `chromaticity_lut` for the chromaticity of a colour X, Y, Z of any luminance.
ramp_top ramptop_xyz(const monitor& mon, const vec3& xyz);
gray_search chromaticity_lut(matrix& tab, const monitor& mon, const vec3& xyz, const lut& curve, double g0,
                             bool restart = false);

}  // namespace corvantile
