#pragma once
// What every fuzz target needs: to say what must hold, and to see how a call ends.

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

#include "corvantile/utils/failure.hpp"

namespace corvantile::fuzz {

/// Ends the process where `holds` is false: the fuzzer then keeps its input.
inline void expect(bool holds, const std::string& what) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", what.c_str());
  std::abort();
}

/// How `f` stopped the run; nothing where it did not. Any other exception ends the process.
template <class F>
std::optional<failure> stop_of(const F& f) {
  try {
    f();
    return std::nullopt;
  } catch (const failure& stop) {
    expect(!stop.message.empty(), "a run that is stopped says why");
    return stop;
  }
}

inline std::string_view as_text(const unsigned char* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

}  // namespace corvantile::fuzz
