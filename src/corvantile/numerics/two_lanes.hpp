#pragma once
// Arithmetic on two numbers side by side.

namespace corvantile {

/// A pair of numbers. +, - and * act lane by lane, and each lane has the bits of plain arithmetic. This computes two
/// independent sums of the same shape as one, in half the instructions; every x86-64 and AArch64 can do it without
/// special flags. `v[0]` and `v[1]` are the lanes.
#if defined(__GNUC__)  // GCC and clang
using two_lanes [[gnu::vector_size(16)]] = double;
#else
struct two_lanes {
  double v[2];
  double operator[](int i) const { return v[i]; }
  friend two_lanes operator+(two_lanes a, two_lanes b) { return {a.v[0] + b.v[0], a.v[1] + b.v[1]}; }
  friend two_lanes operator-(two_lanes a, two_lanes b) { return {a.v[0] - b.v[0], a.v[1] - b.v[1]}; }
  friend two_lanes operator*(two_lanes a, two_lanes b) { return {a.v[0] * b.v[0], a.v[1] * b.v[1]}; }
};
#endif

/// `x` in every lane of a T, which is double or two_lanes.
template <class T>
T in_each_lane(double x) {
  if constexpr (sizeof(T) == sizeof(double)) {
    return x;
  } else {
    return T{x, x};
  }
}

}  // namespace corvantile
