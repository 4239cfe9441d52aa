#pragma once
// A front end and a monitor made ready for being asked many times, as the searches ask them. Same bits as the
// routines of monitor.hpp, without their scans, and without touching the heap once made.

#include <array>
#include <optional>
#include <tuple>

#include "monitor/monitor.hpp"
#include "numerics/packed_curve.hpp"

namespace corvantile {

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

/// The forward model of one monitor, which must outlive it.
class prepared_monitor {
 public:
  explicit prepared_monitor(const monitor& mon) : source_(&mon) {
    for (std::size_t c = 0; c < 3; ++c) {
      inpcurve_[c] = packed_curve(mon.inpcurve[c]);
      xcurve_[c] = packed_curve(mon.xcurve[c]);
      zcurve_[c] = packed_curve(mon.zcurve[c]);
    }
    if (mon.composite) fe_.emplace(mon.fe);
  }
  const monitor& source() const { return *source_; }

  vec3 inp2mon(const vec3& inp) const {
    const vec3 u = fe_ ? (*fe_)(inp) : inp;
    return {{inpcurve_[0](u[0]), inpcurve_[1](u[1]), inpcurve_[2](u[2])}};
  }
  vec3 mon2out(const vec3& m) const {
    const auto& [Xmax, Ymax, Zmax] = std::tie(source_->Xmax, source_->Ymax, source_->Zmax);
    const vec3& dark = source_->darklight;
    return {{Xmax[0] * xcurve_[0](m[0]) + Xmax[1] * xcurve_[1](m[1]) + Xmax[2] * xcurve_[2](m[2]) + dark[0],
             Ymax[0] * m[0] + Ymax[1] * m[1] + Ymax[2] * m[2] + dark[1],
             Zmax[0] * zcurve_[0](m[0]) + Zmax[1] * zcurve_[1](m[1]) + Zmax[2] * zcurve_[2](m[2]) + dark[2]}};
  }

 private:
  const monitor* source_;
  std::array<packed_curve, 3> inpcurve_, xcurve_, zcurve_;
  std::optional<prepared_front_end> fe_;
};

}  // namespace corvantile
