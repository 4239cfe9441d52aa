#include "corvantile/job/device_tables.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

namespace corvantile {
namespace {

// The value at `x` of a table on 0..1, which keeps its end values beyond.
double held_at_ends(std::span<const double> table, double x) {
  const auto last = static_cast<double>(table.size() - 1);
  const double at = std::clamp(x, 0.0, 1.0) * last;
  const auto i = static_cast<std::size_t>(std::min(std::floor(at), last - 1));
  return std::lerp(table[i], table[i + 1], at - static_cast<double>(i));
}

vec3 through(const matrix& table, const vec3& x) {
  vec3 y;
  for (std::size_t c = 0; c < 3; ++c) y[c] = held_at_ends(table.col(c), x[c]);
  return y;
}

}  // namespace

device_tables tables_of(const correction& result) {
  device_tables t;
  t.two_tables = result.two.has_value();
  t.post = result.two ? result.two->postlut : result.gray;
  if (result.two) {
    t.pre = result.two->prelut;
    t.mix = result.two->matrix;
    t.clips = result.two->cmon.fe.clips;
  }
  matrix& with_gray = result.two ? t.pre : t.post;
  const std::size_t row = result.undefined_row.value_or(0);
  if (row > 0 && row < with_gray.rows()) set_row3(with_gray, row, row3(with_gray, row - 1));
  return t;
}

vec3 corrected(const device_tables& tables, const vec3& drive) {
  return through(tables.post, tables.two_tables ? tables.mix * through(tables.pre, drive) : drive);
}

front_end front_end_of(const device_tables& tables) {
  constexpr std::array<double, 2> ends{0.0, 1.0};
  const matrix identity = in_all_channels(ends);
  front_end fe;
  set3chluts(fe, tables.two_tables ? &tables.pre : &identity, &tables.post, &tables.mix);
  fe.clips = tables.clips;
  return fe;
}

matrix resample(const matrix& table, std::size_t entries) {
  const std::size_t old_steps = table.rows() - 1;
  const std::size_t steps = entries - 1;
  matrix out(entries, table.cols());
  for (std::size_t c = 0; c < table.cols(); ++c) {
    const std::span<const double> from = table.col(c);
    for (std::size_t i = 0; i < entries; ++i) {
      const std::size_t at = i * old_steps / steps;
      const std::size_t rest = i * old_steps % steps;  // in integers, to hit old rows exactly
      out(i, c) = rest == 0
                      ? from[at]
                      : std::lerp(from[at], from[at + 1], static_cast<double>(rest) / static_cast<double>(steps));
    }
  }
  return out;
}

}  // namespace corvantile
