#pragma once
// A front end and a monitor, prepared for the many evaluations of a search. Same bits as the routines of monitor.hpp,
// but without their scans, and without touching the heap once constructed.

#include <algorithm>
#include <array>
#include <optional>

#include "corvantile/monitor/monitor.hpp"
#include "corvantile/numerics/bisection.hpp"
#include "corvantile/numerics/packed_curve.hpp"

namespace corvantile {

inline constexpr double inverse_tolerance = 1e-12;  ///< of the inputs that `mon2inp` finds; full drive is 1

/// `femap` of one front end, which must outlive this.
class prepared_front_end {
 public:
  explicit prepared_front_end(const front_end& fe)
      : pre_{interpolator(fe.pre[0]), interpolator(fe.pre[1]), interpolator(fe.pre[2])},
        post_{interpolator(fe.post[0]), interpolator(fe.post[1]), interpolator(fe.post[2])},
        matrix_(fe.matrix),
        clips_(fe.clips) {}

  /// The values between matrix and post-table, not clipped.
  vec3 linear(const vec3& u) const { return matrix_ * vec3{{pre_[0](u[0]), pre_[1](u[1]), pre_[2](u[2])}}; }

  vec3 operator()(const vec3& u) const {
    vec3 q = linear(u);
    if (clips_)
      for (double& v : q.v) v = std::clamp(v, 0.0, 1.0);
    return {{post_[0](q[0]), post_[1](q[1]), post_[2](q[2])}};
  }

 private:
  std::array<interpolator, 3> pre_;
  std::array<interpolator, 3> post_;
  mat3 matrix_;
  bool clips_;
};

/// The model of one monitor, which must outlive this. Each evaluation leaves hints for the next, so each thread needs
/// its own model.
class prepared_monitor {
 public:
  explicit prepared_monitor(const monitor& mon) : source_(&mon) {
    for (std::size_t c = 0; c < 3; ++c) {
      packed_ = packed_ && is_packable(mon.inpcurve[c]) && is_packable(mon.xcurve[c]) && is_packable(mon.zcurve[c]);
      if (!packed_) break;
      tone_[c] = packed_curve(mon.inpcurve[c]);
      xz_[c] = packed_pair(mon.xcurve[c], mon.zcurve[c]);
      xz_max_[c] = two_lanes{mon.Xmax[c], mon.Zmax[c]};
    }
    if (mon.composite) {
      fe_.emplace(mon.fe);
      ife_.emplace(mon.ife);
    }
    plain_ = packed_ && !fe_;
  }
  const monitor& source() const { return *source_; }

  /// The colour that the inputs `r`, `g`, `b` show: `inp2mon` and `mon2out` in one.
  vec3 inp2out(double r, double g, double b) const {
    if (!plain_) [[unlikely]]
      return inp2out_in_general(r, g, b);
    return colour({{tone_[0](r), tone_[1](g), tone_[2](b)}});
  }

  /// The squared distance from that colour to `xyz` if it is below `limit`, otherwise some number not below `limit`.
  /// Luminance alone often decides: its squared difference never exceeds the sum of all three, however that is
  /// rounded.
  double inp2out_dist2(double r, double g, double b, const vec3& xyz, double limit) const {
    if (!plain_) [[unlikely]]
      return dist2(inp2out_in_general(r, g, b), xyz);
    const vec3 m{{tone_[0](r), tone_[1](g), tone_[2](b)}};
    const double Y = luminance(m);
    if ((Y - xyz[1]) * (Y - xyz[1]) >= limit) return limit;
    return dist2(colour(m, Y), xyz);
  }

  vec3 mon2out(const vec3& m) const {
    if (!packed_) return mon2out_vec(*source_, m);
    return colour(m);
  }

  vec3 mon2inp(const vec3& m) const {
    if (!packed_) [[unlikely]]
      return mon2inp_vec(*source_, m);
    vec3 u;
    for (std::size_t c = 0; c < 3; ++c) u[c] = solve_by_bisection(tone_[c], m[c], 0.0, 1.0, inverse_tolerance);
    return ife_ ? (*ife_)(u) : u;
  }

 private:
  double luminance(const vec3& m) const {
    const vec3& Y = source_->Ymax;
    return Y[0] * m[0] + Y[1] * m[1] + Y[2] * m[2] + source_->darklight[1];
  }
  vec3 colour(const vec3& m, double Y) const {
    const two_lanes xz = xz_max_[0] * xz_[0](m[0]) + xz_max_[1] * xz_[1](m[1]) + xz_max_[2] * xz_[2](m[2]);
    return {{xz[0] + source_->darklight[0], Y, xz[1] + source_->darklight[2]}};
  }
  vec3 colour(const vec3& m) const { return colour(m, luminance(m)); }

  // Out of line, to keep the usual path short.
  [[gnu::noinline]] vec3 inp2out_in_general(double r, double g, double b) const {
    const vec3 inp{{r, g, b}};
    if (!packed_) return inp2out_vec(*source_, inp);
    const vec3 u = fe_ ? (*fe_)(inp) : inp;
    return colour({{tone_[0](u[0]), tone_[1](u[1]), tone_[2](u[2])}});
  }

  const monitor* source_;
  bool packed_ = true;  // if not, some curve is unlike those of a fit, and the plain routines serve
  bool plain_ = false;  // packed, and without a front end
  std::array<packed_curve, 3> tone_;
  std::array<packed_pair, 3> xz_;  // the X and Z curves of each channel
  std::array<two_lanes, 3> xz_max_{};
  std::optional<prepared_front_end> fe_;
  std::optional<prepared_front_end> ife_;
};

}  // namespace corvantile
