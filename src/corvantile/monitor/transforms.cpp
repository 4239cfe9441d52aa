#include <algorithm>
#include <array>
#include <optional>

#include "corvantile/monitor/monitor.hpp"
#include "corvantile/monitor/prepared.hpp"
#include "corvantile/numerics/conic_intersect.hpp"

namespace corvantile {
namespace {

auto inp2mon(const monitor& mon) {
  return [&mon, fe = mon.composite ? std::optional<prepared_front_end>(mon.fe) : std::nullopt](const vec3& inp) {
    const vec3 u = fe ? (*fe)(inp) : inp;
    return vec3{{ppval(mon.inpcurve[0], u[0]), ppval(mon.inpcurve[1], u[1]), ppval(mon.inpcurve[2], u[2])}};
  };
}

// Sums the three channels in the order red, green, blue, and adds the dark light last. `x` and `z` give a channel's
// fraction of its X and Z at a monitor value.
template <class X, class Z>
vec3 sum_of_channels(const monitor& mon, const vec3& m, const X& x, const Z& z) {
  vec3 out;
  for (std::size_t c = 0; c < 3; ++c) {
    out[0] += mon.Xmax[c] * x(c, m[c]);
    out[1] += mon.Ymax[c] * m[c];
    out[2] += mon.Zmax[c] * z(c, m[c]);
  }
  return out + mon.darklight;
}

auto mon2out(const monitor& mon) {
  return [&mon](const vec3& m) {
    return sum_of_channels(
        mon, m, [&](std::size_t c, double v) { return ppval(mon.xcurve[c], v); },
        [&](std::size_t c, double v) { return ppval(mon.zcurve[c], v); });
  };
}

auto quadmon2out(const monitor& mon) {
  return [&mon](const vec3& m) {
    const auto quadratic = [](double a, double v) { return (1 - a) * v + a * (v * v); };
    return sum_of_channels(
        mon, m, [&](std::size_t c, double v) { return quadratic(mon.nX[c], v); },
        [&](std::size_t c, double v) { return quadratic(mon.nZ[c], v); });
  };
}

auto mon2inp(const monitor& mon) {
  return [&mon, ife = mon.composite ? std::optional<prepared_front_end>(mon.ife) : std::nullopt](const vec3& m) {
    vec3 u;
    for (std::size_t c = 0; c < 3; ++c) u[c] = ppsolve_s(mon.inpcurve[c], m[c], 0.0, 1.0, inverse_tolerance);
    return ife ? (*ife)(u) : u;
  };
}

// The equation of one tristimulus value in (m1, m2), with m3 eliminated through Y. `C` holds the channels' values of
// that component at full drive, `a` their quadratic coefficients, `Y` their Y; `y` and `target` are the requested Y
// and component.
conic component_conic(const vec3& C, const vec3& a, const vec3& Y, double y, double target) {
  const double Y3sq = Y[2] * Y[2];
  return {C[0] * a[0] + C[2] * a[2] * (Y[0] * Y[0]) / Y3sq,
          2 * C[2] * a[2] * Y[0] * Y[1] / Y3sq,
          C[1] * a[1] + C[2] * a[2] * (Y[1] * Y[1]) / Y3sq,
          (1 - a[0]) * C[0] - C[2] * ((1 - a[2]) * Y[0] / Y[2] + 2 * a[2] * y * Y[0] / Y3sq),
          (1 - a[1]) * C[1] - C[2] * ((1 - a[2]) * Y[1] / Y[2] + 2 * a[2] * y * Y[1] / Y3sq),
          C[2] * ((1 - a[2]) * y / Y[2] + a[2] * (y * y) / Y3sq) - target};
}

}  // namespace

vec3 inp2mon_vec(const monitor& mon, const vec3& inp) { return apply(inp2mon(mon), inp); }
matrix inp2mon_mat(const monitor& mon, const matrix& inp) { return apply(inp2mon(mon), inp); }

vec3 mon2out_vec(const monitor& mon, const vec3& m) { return apply(mon2out(mon), m); }
matrix mon2out_mat(const monitor& mon, const matrix& m) { return apply(mon2out(mon), m); }

vec3 inp2out_vec(const monitor& mon, const vec3& inp) { return mon2out_vec(mon, inp2mon_vec(mon, inp)); }
matrix inp2out_mat(const monitor& mon, const matrix& inp) { return mon2out_mat(mon, inp2mon_mat(mon, inp)); }

vec3 mon2inp_vec(const monitor& mon, const vec3& m) { return apply(mon2inp(mon), m); }
// Packing the curves pays off for a batch, not for a single triple.
matrix mon2inp_mat(const monitor& mon, const matrix& m) {
  return apply([prepared = prepared_monitor(mon)](const vec3& v) { return prepared.mon2inp(v); }, m);
}

vec3 quadmon2out_vec(const monitor& mon, const vec3& m) { return apply(quadmon2out(mon), m); }
matrix quadmon2out_mat(const monitor& mon, const matrix& m) { return apply(quadmon2out(mon), m); }

vec3 quad_out2mon(const monitor& mon, const vec3& xyz, double* error) {
  const vec3 light = xyz - mon.darklight;
  const conic from_x = component_conic(mon.Xmax, mon.nX, mon.Ymax, light[1], light[0]);
  const conic from_z = component_conic(mon.Zmax, mon.nZ, mon.Ymax, light[1], light[2]);
  const vec3 start = mon.XYZ2RGB * xyz;  // includes the dark light: good enough for a start
  const vec2 mu = cmus(from_x, from_z, {{start[0], start[1]}});
  const double m3 = (light[1] - mon.Ymax[0] * mu[0] - mon.Ymax[1] * mu[1]) / mon.Ymax[2];
  const vec3 m{{mu[0], mu[1], std::clamp(m3, 0.0, 1.0)}};
  if (error) *error = dist2(quadmon2out_vec(mon, m), xyz);
  return m;
}

}  // namespace corvantile
