// The GNU Scientific Library's simplex search on the same valley, for comparison.

#include <benchmark/benchmark.h>
#include <cstdint>
#include <gsl/gsl_multimin.h>

#include "bench/valley.hpp"

namespace corvantile::bench {
namespace {

double counted_valley(const gsl_vector* x, void* evals) {
  ++*static_cast<std::int64_t*>(evals);
  return valley({x->data, x->size});
}

void simplex_of_gsl(benchmark::State& state) {
  constexpr std::size_t n = valley_start.size();
  std::int64_t evals = 0;
  gsl_multimin_function cost{counted_valley, n, &evals};
  gsl_vector* const start = gsl_vector_alloc(n);
  gsl_vector* const step = gsl_vector_alloc(n);
  gsl_vector_set_all(step, 1.0);
  for (std::size_t i = 0; i < n; ++i) gsl_vector_set(start, i, valley_start[i]);
  for (auto _ : state) {
    evals = 0;
    gsl_multimin_fminimizer* const search = gsl_multimin_fminimizer_alloc(gsl_multimin_fminimizer_nmsimplex2, n);
    gsl_multimin_fminimizer_set(search, &cost, start, step);
    // It measures the size of the simplex: about the root of the difference of values.
    while (gsl_multimin_fminimizer_iterate(search) == 0 && gsl_multimin_fminimizer_size(search) > 1e-7) {
    }
    benchmark::DoNotOptimize(gsl_multimin_fminimizer_minimum(search));
    gsl_multimin_fminimizer_free(search);
  }
  gsl_vector_free(start);
  gsl_vector_free(step);
  state.counters["evals"] = static_cast<double>(evals);
}
BENCHMARK(simplex_of_gsl);

}  // namespace
}  // namespace corvantile::bench
