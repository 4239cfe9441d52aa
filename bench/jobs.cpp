// Whole jobs, in memory: settings and measurements in, tables out.

#include <benchmark/benchmark.h>

#include "bench/subject.hpp"
#include "corvantile/job/correction.hpp"
#include "corvantile/monitor/monitor.hpp"

namespace corvantile::bench {
namespace {

// Arguments: levels in a ramp, `tlen`.
void job(benchmark::State& state, settings set) {
  const measurements samples = load_measurements(measurement_path(static_cast<int>(state.range(0))));
  set.tlen = static_cast<int>(state.range(1));
  for (auto _ : state) benchmark::DoNotOptimize(solve(set, samples));
}

void sizes(benchmark::internal::Benchmark* b) {
  b->ArgNames({"levels", "tlen"})->ArgsProduct({{17, 64}, {256, 4096}})->Unit(benchmark::kMillisecond);
}

constexpr auto cv1_mode = match_mode::cv1;
BENCHMARK_CAPTURE(job, CV1, settings{.mode = cv1_mode})->Apply(sizes);
BENCHMARK_CAPTURE(job, CV1_6500K, settings{.mode = cv1_mode, .temp = 6500})->Apply(sizes);
BENCHMARK_CAPTURE(job, CV1_6500K_swath, settings{.mode = cv1_mode, .temp = 6500, .hwid = 0.005})->Apply(sizes);
BENCHMARK_CAPTURE(job, CV2, settings{.mode = match_mode::cv2})->Apply(sizes);
BENCHMARK_CAPTURE(job, CV2_1_6500K, settings{.mode = match_mode::cv2_1, .temp = 6500})->Apply(sizes);

}  // namespace
}  // namespace corvantile::bench
