#include <algorithm>
#include <cmath>
#include <span>
#include <string>
#include <vector>

#include "corvantile/job/judgements.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {
namespace {

// The widest gap between neighbouring readings, in pieces, that a curve can bridge. With simulated displays, tables
// are as accurate as the readings up to here; from 1.3 on their errors are several times as large.
constexpr double widest_bridged = 1.1;
constexpr int most_pieces = 256;
constexpr int fewest_pieces = 3;
constexpr int default_pieces = 5;

// How much farther a curve may get from its quadratic between the readings than at them, as a fraction of full drive.
// Half of it becomes an error in drive. Tables that are off by more than 0.02 have more; those of good files far
// less.
constexpr double free_swing = 0.02;

// The widest gap between neighbouring readings of a channel, in monitor values.
double widest_gap(const monitor& mon) {
  double widest = 0;
  for (std::size_t c = 0; c < 3; ++c) {
    const auto column = mon.rampy.col(c);
    std::vector<double> m(column.begin(), column.end());
    std::ranges::sort(m);
    for (std::size_t i = 1; i < m.size(); ++i) widest = std::max(widest, m[i] - m[i - 1]);
  }
  return widest;
}

// How much farther `curve` gets from the quadratic (1 - a) m + a m^2 between the readings (m, ratio) than at them.
double swing(const ppoly& curve, double a, std::span<const double> m, std::span<const double> ratio) {
  const auto quadratic = [a](double v) { return (1 - a) * v + a * (v * v); };
  double between = 0, at = 0;
  constexpr int steps = 1000;
  for (int i = 0; i <= steps; ++i) {
    const double v = static_cast<double>(i) / steps;
    between = std::max(between, std::abs(ppval(curve, v) - quadratic(v)));
  }
  for (std::size_t i = 0; i < m.size(); ++i) at = std::max(at, std::abs(ratio[i] - quadratic(m[i])));
  return between - at;
}

struct swinging_curve {
  double by = free_swing;
  std::string name;
};

swinging_curve worst_curve(const monitor& mon) {
  swinging_curve worst;
  for (std::size_t c = 0; c < 3; ++c) {
    const double x = swing(mon.xcurve[c], mon.nX[c], mon.rampy.col(c), mon.rampx.col(c));
    const double z = swing(mon.zcurve[c], mon.nZ[c], mon.rampy.col(c), mon.rampz.col(c));
    if (x > worst.by) worst = {x, std::string(channel_names[c]) + "'s X"};
    if (z > worst.by) worst = {z, std::string(channel_names[c]) + "'s Z"};
  }
  return worst;
}

std::string advice(int carried) {
  if (carried < fewest_pieces) return "measure more levels: these are too few for any fit";
  return "use numsegs = " + std::to_string(carried) + ", which suits the levels, or measure more levels";
}

}  // namespace

int largest_numsegs(const monitor& mon) {
  const double gap = widest_gap(mon);
  if (!(gap * most_pieces > widest_bridged)) return most_pieces;
  return std::max(static_cast<int>(widest_bridged / gap), fewest_pieces - 1);
}

std::vector<finding> judge_fit(const monitor& mon) {
  const int pieces = mon.numsegs < 0 ? default_pieces : mon.numsegs;
  const int carried = largest_numsegs(mon);
  if (pieces <= carried) return {};
  const swinging_curve worst = worst_curve(mon);
  if (worst.name.empty()) return {};
  return {{"numsegs", severity::warning,
           "numsegs = " + std::to_string(pieces) + " is too many for " + std::to_string(mon.nramp) +
               " levels: the fitted curves swing between them, " + worst.name + " by " + short_percent(worst.by) +
               " of its full value, and so do the tables",
           advice(carried)}};
}

std::vector<finding> judge(const measurements& samples, const monitor& mon) {
  std::vector<finding> found = judge_measurements(samples, mon);
  append(found, judge_fit(mon));
  return found;
}

}  // namespace corvantile
