#pragma once
// A front end and a monitor made ready for being asked many times, as the searches ask them. Same bits as the
// routines of monitor.hpp, without their scans, and without touching the heap once made.

#include <array>
#include <optional>

#include "monitor/monitor.hpp"
#include "numerics/bisection.hpp"
#include "numerics/packed_curve.hpp"

namespace corvantile {

inline constexpr double inverse_tolerance = 1e-12;  ///< of the inputs that `mon2inp` finds, full drive being 1

/// `femap` of one front end, which must outlive it.
class prepared_front_end {
 public:
  explicit prepared_front_end(const front_end& fe)
      : pre_{interpolator(fe.pre[0]), interpolator(fe.pre[1]), interpolator(fe.pre[2])},
        post_{interpolator(fe.post[0]), interpolator(fe.post[1]), interpolator(fe.post[2])},
        matrix_(fe.matrix) {}

  vec3 operator()(const vec3& u) const {
    const vec3 q = matrix_ * vec3{{pre_[0](u[0]), pre_[1](u[1]), pre_[2](u[2])}};
    return {{post_[0](q[0]), post_[1](q[1]), post_[2](q[2])}};
  }

 private:
  std::array<interpolator, 3> pre_;
  std::array<interpolator, 3> post_;
  mat3 matrix_;
};

/// The model of one monitor, which must outlive it.
class prepared_monitor {
 public:
  explicit prepared_monitor(const monitor& mon) : source_(&mon) {
    for (std::size_t c = 0; c < 3; ++c) {
      inpcurve_[c] = packed_curve(mon.inpcurve[c]);
      xcurve_[c] = packed_curve(mon.xcurve[c]);
      zcurve_[c] = packed_curve(mon.zcurve[c]);
    }
    shared_knots_ = same_knots(xcurve_[0], zcurve_[0]) && same_knots(xcurve_[1], zcurve_[1]) &&
                    same_knots(xcurve_[2], zcurve_[2]);
    if (mon.composite) {
      fe_.emplace(mon.fe);
      ife_.emplace(mon.ife);
    }
  }
  const monitor& source() const { return *source_; }

  vec3 inp2mon(const vec3& inp) const {
    const vec3 u = fe_ ? (*fe_)(inp) : inp;
    return {{inpcurve_[0](u[0]), inpcurve_[1](u[1]), inpcurve_[2](u[2])}};
  }
  vec3 mon2out(const vec3& m) const {
    vec3 x;
    vec3 z;
    for (std::size_t c = 0; c < 3; ++c) {
      const std::size_t piece = xcurve_[c].piece_at(m[c]);
      x[c] = xcurve_[c].value(piece, m[c]);
      z[c] = shared_knots_ ? zcurve_[c].value(piece, m[c]) : zcurve_[c](m[c]);
    }
    const auto sum = [](const vec3& max, const vec3& f) { return max[0] * f[0] + max[1] * f[1] + max[2] * f[2]; };
    const vec3& dark = source_->darklight;
    return {{sum(source_->Xmax, x) + dark[0], sum(source_->Ymax, m) + dark[1], sum(source_->Zmax, z) + dark[2]}};
  }

  vec3 mon2inp(const vec3& m) const {
    vec3 u;
    for (std::size_t c = 0; c < 3; ++c) u[c] = solve_by_bisection(inpcurve_[c], m[c], 0.0, 1.0, inverse_tolerance);
    return ife_ ? (*ife_)(u) : u;
  }

 private:
  const monitor* source_;
  std::array<packed_curve, 3> inpcurve_, xcurve_, zcurve_;
  bool shared_knots_ = false;  // of the X and Z curves of each channel: they are usually fitted on the same ones
  std::optional<prepared_front_end> fe_;
  std::optional<prepared_front_end> ife_;
};

}  // namespace corvantile
