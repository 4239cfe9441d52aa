#pragma once
// The one-parameter quadratic that describes how a channel's X or Z grows with its Y.

#include <span>

namespace corvantile {

/// How badly y = (1 - a) x + a x^2 describes the samples: the sum of squared residuals. a = 0 is the identity, a = 1
/// the square law; any a is allowed. `x_vals` and `y_vals` have one length. Without samples the cost is 0.
struct nlerr {
  std::span<const double> x_vals;
  std::span<const double> y_vals;

  double operator()(std::span<const double> p) const {
    const double a = p[0];
    double sum = 0;
    for (std::size_t i = 0; i < x_vals.size(); ++i) {
      const double x = x_vals[i];
      const double est = (1 - a) * x + a * (x * x);
      const double del = y_vals[i] - est;
      sum += del * del;
    }
    return sum;
  }
};

}  // namespace corvantile
