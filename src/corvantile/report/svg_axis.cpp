#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <utility>

#include "corvantile/report/svg.hpp"

namespace corvantile::svg {
namespace {

double on_scale(const axis& a, double v) { return a.logarithmic ? std::log10(v) : v; }

// The step of a linear axis: 1, 2 or 5 times a power of ten.
double step_of(const axis& a, int about) {
  const double raw = (a.to - a.from) / about;
  const double power = std::pow(10.0, std::floor(std::log10(raw)));
  const double f = raw / power;
  return power * (f < 1.5 ? 1 : f < 3.5 ? 2 : f < 7.5 ? 5 : 10);
}

int decimals_of(double step) { return std::max(0, static_cast<int>(std::ceil(-std::log10(step) - 1e-9))); }

// Long numbers get an exponent.
std::string tick_label(double v, int decimals) {
  return std::abs(v) < 1e7 && decimals <= 6 ? number(v, decimals) : fmt::format("{:.3g}", v);
}

std::vector<tick> linear_ticks(const axis& a, int about) {
  const double step = step_of(a, about);
  const double first = std::ceil(a.from / step - 1e-6);
  const auto steps = static_cast<int>(std::floor(a.to / step + 1e-6) - first);
  std::vector<tick> t;
  for (int i = 0; i <= steps; ++i) {
    const double v = (first + i) * step;
    t.push_back({v, tick_label(v, decimals_of(step))});
  }
  return t;
}

std::vector<tick> logarithmic_ticks(const axis& a, int about) {
  const double first = std::floor(std::log10(a.from));
  const double last = std::ceil(std::log10(a.to));
  const double every = std::max(1.0, std::ceil((last - first) / (2.0 * about)));
  const bool between = last - first <= 0.7 * about;
  std::vector<tick> t;
  for (double e = first; e <= last; e += every) {
    for (const double f : {1.0, 2.0, 5.0}) {
      const double v = f * std::pow(10.0, e);
      if ((f > 1 && !between) || v < a.from * (1 - 1e-9) || v > a.to * (1 + 1e-9)) continue;
      t.push_back({v, tick_label(v, std::max(0, static_cast<int>(-e)))});
    }
  }
  return t;
}

}  // namespace

bool has_place(const axis& a, double v) { return std::isfinite(v) && (!a.logarithmic || v > 0); }

double share_of(const axis& a, double v) {
  return (on_scale(a, v) - on_scale(a, a.from)) / (on_scale(a, a.to) - on_scale(a, a.from));
}

axis drawable(axis a) {
  if (a.logarithmic) {
    if (!(a.to > 0) || !std::isfinite(a.to)) a.to = 1;
    if (!(a.from > 0) || !(a.from < a.to)) a.from = a.to / 10;
    return a;
  }
  if (!std::isfinite(a.from) || !std::isfinite(a.to) || !std::isfinite(a.to - a.from)) a.from = 0, a.to = 1;
  if (a.to < a.from) std::swap(a.from, a.to);
  const double least = 1e-9 * std::max(std::abs(a.from), std::abs(a.to));
  if (a.to - a.from <= least || a.to - a.from < 1e-12) {
    const double room = std::max(0.1 * std::abs(a.from), 0.5);
    a.from -= room;
    a.to += room;
  }
  return a;
}

axis holding(axis a, const std::vector<double>& values) {
  for (const double v : values) {
    if (!has_place(a, v)) continue;
    a.from = std::min(a.from, v);
    a.to = std::max(a.to, v);
  }
  return a;
}

axis rounded(axis a, int about) {
  a = drawable(a);
  if (a.logarithmic) return a;
  const double step = step_of(a, about);
  a.from = step * std::floor(a.from / step + 1e-6);
  a.to = step * std::ceil(a.to / step - 1e-6);
  return a;
}

std::vector<tick> ticks(const axis& a, int about) {
  const axis d = drawable(a);
  return d.logarithmic ? logarithmic_ticks(d, about) : linear_ticks(d, about);
}

}  // namespace corvantile::svg
