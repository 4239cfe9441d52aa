// NLopt's simplex search on the same valley, for comparison.

#include <benchmark/benchmark.h>
#include <cstdint>
#include <nlopt.h>

#include "bench/valley.hpp"

namespace corvantile::bench {
namespace {

double counted_valley(unsigned n, const double* x, double* /*gradient*/, void* evals) {
  ++*static_cast<std::int64_t*>(evals);
  return valley({x, n});
}

void simplex_of_nlopt(benchmark::State& state) {
  std::int64_t evals = 0;
  for (auto _ : state) {
    evals = 0;
    auto x = valley_start;
    double value = 0;
    const nlopt_opt search = nlopt_create(NLOPT_LN_NELDERMEAD, static_cast<unsigned>(x.size()));
    nlopt_set_min_objective(search, counted_valley, &evals);
    nlopt_set_initial_step1(search, 1.0);
    nlopt_set_ftol_abs(search, valley_tolerance);
    nlopt_optimize(search, x.data(), &value);
    nlopt_destroy(search);
    benchmark::DoNotOptimize(value);
  }
  state.counters["evals"] = static_cast<double>(evals);
}
BENCHMARK(simplex_of_nlopt);

}  // namespace
}  // namespace corvantile::bench
