// The simplex search on costs that take next to no time.

#include <algorithm>
#include <array>
#include <benchmark/benchmark.h>
#include <cmath>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "bench/valley.hpp"
#include "corvantile/numerics/neldmead.hpp"

namespace corvantile::bench {
namespace {

template <class Cost, class Start>
void search(benchmark::State& state, const Cost& cost, const Start& start, const nm_settings& set) {
  std::int64_t evals = 0;
  std::int64_t iters = 0;
  for (auto _ : state) {
    const auto found = neldermead(cost, start, set);
    evals = found.evals;
    iters = found.iters;
    benchmark::DoNotOptimize(found);
  }
  state.counters["evals"] = static_cast<double>(evals);
  state.counters["iters"] = static_cast<double>(iters);
}

void simplex_of_fixed_size(benchmark::State& state) {
  search(state, valley, valley_start, {.tol = valley_tolerance});
}
BENCHMARK(simplex_of_fixed_size);

// Argument: the dimension, known at run time only.
void simplex_of_run_time_size(benchmark::State& state) {
  std::vector<double> start(static_cast<std::size_t>(state.range(0)));
  for (std::size_t i = 0; i < start.size(); ++i) start[i] = valley_start[i % valley_start.size()];
  search(state, valley, std::span<const double>(start), {.tol = valley_tolerance});
}
BENCHMARK(simplex_of_run_time_size)->Arg(3)->Arg(6)->Arg(13)->Arg(65)->Unit(benchmark::kMicrosecond);

// A cost in steps: vertices have equal values, so every iteration has to sort in full.
void simplex_with_ties(benchmark::State& state) {
  const auto steps = [](std::span<const double> x) { return std::floor(1e3 * valley(x)); };
  search(state, steps, valley_start, {.tol = -1, .maxit = 1000, .skip_cycles = false});
}
BENCHMARK(simplex_with_ties)->Unit(benchmark::kMicrosecond);

// A cost that is NaN on one side of a wall: the simplex shrinks against the wall until it repeats itself. The search
// notices, or else runs to its limit.
void stalled_simplex(benchmark::State& state) {
  const auto wall = [](std::span<const double> x) {
    double sum = 0.02;
    for (const double v : x) sum += std::pow(5740 * (std::sin(v + 0.3) - 0.1), 2);
    return x[0] > 0.4 ? std::numeric_limits<double>::quiet_NaN() : sum;
  };
  search(state, wall, std::array{0.5, 0.0, 0.2}, {.scale = 0.05, .tol = 3e-18, .maxit = 100000});
}
BENCHMARK(stalled_simplex)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace corvantile::bench
