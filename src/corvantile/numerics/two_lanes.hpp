#pragma once
// Two numbers computed with side by side.

namespace corvantile {

/// A pair of numbers that +, - and * act on lane by lane: each lane has the bits that plain arithmetic gives. Of two
/// independent sums of one shape this makes one, in half the instructions, as every x86-64 and AArch64 can without
/// being asked to. `v[0]` and `v[1]` are the lanes.
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
