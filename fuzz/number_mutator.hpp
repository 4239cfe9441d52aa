#pragma once
// A mutator that knows numbers. Flipped bytes seldom turn one number into another; the arithmetic behind the readers
// is reached by texts that stay readable and change in value.
//
// A target that includes this file has it as its mutator.

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "corvantile/utils/text.hpp"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t max_size);

namespace corvantile::fuzz {

struct number_in_text {
  std::size_t begin;
  std::size_t length;
  double value;
};

inline std::vector<number_in_text> numbers_in(std::string_view text) {
  std::vector<number_in_text> found;
  for (std::size_t i = 0; i < text.size();) {
    double value = 0;
    const char* begin = text.data() + i;
    const auto [end, error] = std::from_chars(begin, text.data() + text.size(), value);
    if (error == std::errc::invalid_argument) {
      ++i;
      continue;
    }
    const auto length = static_cast<std::size_t>(end - begin);
    found.push_back({i, length, value});
    i += length;
  }
  return found;
}

template <class Random>
double another_value(double v, double of_another, Random& random) {
  using limits = std::numeric_limits<double>;
  constexpr std::array values{0.0,
                              -0.0,
                              1.0,
                              -1.0,
                              0.5,
                              2.0,
                              3.0,
                              255.0,
                              256.0,
                              1e-7,
                              6500.0,
                              1e10,
                              1e20,
                              1e100,
                              1e154,
                              1e300,
                              limits::max(),
                              limits::min(),
                              limits::denorm_min()};
  const auto pick = [&](std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n - 1)(random); };
  switch (pick(8)) {
    case 0:
      return values[pick(values.size())];
    case 1:
      return -v;
    case 2:
      return std::nextafter(v, pick(2) == 0 ? limits::infinity() : -limits::infinity());
    case 3:
      return v * std::pow(10.0, static_cast<double>(pick(41)) - 20);
    case 4:
      return std::round(v);
    case 5:
      return of_another;
    default:
      return v * std::uniform_real_distribution<double>(0, 2)(random);
  }
}

/// Gives one of the numbers in the text another value, where there is one and the text keeps its room.
inline std::size_t mutate_number(std::uint8_t* data, std::size_t size, std::size_t max_size, unsigned seed) {
  const std::vector<number_in_text> numbers = numbers_in({reinterpret_cast<const char*>(data), size});
  if (numbers.empty()) return LLVMFuzzerMutate(data, size, max_size);
  std::minstd_rand random(seed);
  std::uniform_int_distribution<std::size_t> any(0, numbers.size() - 1);
  const auto& [begin, length, value] = numbers[any(random)];
  const std::string text = free_format(another_value(value, numbers[any(random)].value, random)).substr(1);
  if (size - length + text.size() > max_size) return LLVMFuzzerMutate(data, size, max_size);
  std::memmove(data + begin + text.size(), data + begin + length, size - begin - length);
  std::memcpy(data + begin, text.data(), text.size());
  return size - length + text.size();
}

}  // namespace corvantile::fuzz

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t max_size,
                                               unsigned seed) {
  if (seed % 2 == 0) return LLVMFuzzerMutate(data, size, max_size);
  return corvantile::fuzz::mutate_number(data, size, max_size, seed / 2);
}
