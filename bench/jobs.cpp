// Whole jobs, in process: settings in, tables in a scratch folder out.

#include <benchmark/benchmark.h>
#include <cstdint>
#include <sstream>
#include <string>
#include <utility>

#include "bench/subject.hpp"
#include "driver/run.hpp"
#include "driver/settings.hpp"
#include "monitor/monitor.hpp"
#include "numerics/neldmead.hpp"

namespace corvantile::bench {
namespace {

// Cost evaluations of this thread while `work` runs.
template <class Work>
double evaluations(Work&& work) {
  const std::int64_t before = nm_evaluations;
  std::forward<Work>(work)();
  return static_cast<double>(nm_evaluations - before);
}

// Arguments: levels in a ramp, `tlen`. `options` is the text of further settings.
void job(benchmark::State& state, const std::string& options) {
  const int levels = static_cast<int>(state.range(0));
  std::ostringstream out;
  settings set = read_settings("&opts " + options + " tlen=" + std::to_string(state.range(1)) + " wgfile='" +
                               measurement_path(levels) + "' outdir='" + scratch().path() + "' /");
  fill_xytable(set, out);

  const double smoothing = evaluations([&] { loadmonitor(set.wgfile, set.numsegs, set.minslope); });
  double all = 0;
  for (auto _ : state) {
    std::ostringstream err;
    all = evaluations([&] { run(set, false, out, err); });
  }
  state.counters["smoothing_evals"] = smoothing;
  state.counters["inversion_evals"] = all - smoothing;
}

void sizes(benchmark::internal::Benchmark* b) {
  b->ArgNames({"levels", "tlen"})->ArgsProduct({{17, 64}, {256, 4096}})->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(job, CV1, "cvmode='CV1'")->Apply(sizes);
BENCHMARK_CAPTURE(job, CV1_6500K, "cvmode='CV1' temp=6500")->Apply(sizes);
BENCHMARK_CAPTURE(job, CV1_6500K_swath, "cvmode='CV1' temp=6500 hwid=0.005")->Apply(sizes);
BENCHMARK_CAPTURE(job, CV2, "cvmode='CV2'")->Apply(sizes);
BENCHMARK_CAPTURE(job, CV2_1_6500K, "cvmode='CV2_1' temp=6500")->Apply(sizes);

}  // namespace
}  // namespace corvantile::bench
