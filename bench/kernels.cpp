// The routines in which a run spends its time, one at a time.

#include <algorithm>
#include <array>
#include <benchmark/benchmark.h>
#include <cstdint>
#include <span>
#include <vector>

#include "bench/subject.hpp"
#include "corvantile/colour/nonpar_monitor.hpp"
#include "corvantile/monitor/monitor.hpp"
#include "corvantile/monitor/prepared.hpp"
#include "corvantile/numerics/monotone_smoothing.hpp"
#include "corvantile/numerics/neldmead.hpp"
#include "corvantile/utils/lut.hpp"

namespace corvantile::bench {
namespace {

const monitor& display() {
  static const monitor mon = makemonitor({.name = "subject", .data = sample_rows(subject(17)), .nramp = 17});
  return mon;
}

// A colour in the middle of the gamut, off the gray axis.
vec3 some_colour() { return inp2out_vec(display(), {{0.4, 0.55, 0.7}}); }

// Argument of the two smoothing benchmarks: samples in the curve.
struct tone_samples {
  explicit tone_samples(std::int64_t n) : x(linspace(0, 1, static_cast<std::size_t>(n))), y(x) {
    const simulated_display d = subject(17);
    for (double& v : y) v = tone(d, 1, v);
  }
  std::vector<double> x, y;
};

void smoothing_cost(benchmark::State& state) {
  const tone_samples samples(state.range(0));
  monotone_fit fit(samples.x, samples.y, 6, 0);
  const std::vector<double> p = fit.starting_point();
  for (auto _ : state) benchmark::DoNotOptimize(fit.cost(p));
}
BENCHMARK(smoothing_cost)->Arg(17)->Arg(64)->Arg(256);

void smoothing(benchmark::State& state) {
  const tone_samples samples(state.range(0));
  monotone_fit fit(samples.x, samples.y, 6, 0);
  const auto cost = [&](std::span<const double> p) { return fit.cost(p); };
  state.counters["evals"] = static_cast<double>(neldermead(cost, fit.starting_point(), {.tol = 1e-14}).evals);
  for (auto _ : state) benchmark::DoNotOptimize(pp_iba(samples.x, samples.y));
}
BENCHMARK(smoothing)->Arg(17)->Arg(64)->Arg(256)->Unit(benchmark::kMicrosecond);

void inversion_cost(benchmark::State& state) {
  const prepared_monitor mon(display());
  const vec3 xyz = some_colour();
  const cost2i cost{mon, xyz};
  std::array a{0.7, 0.8, 0.9};
  for (auto _ : state) {
    benchmark::DoNotOptimize(a);
    benchmark::DoNotOptimize(cost(a));
  }
}
BENCHMARK(inversion_cost);

void one_inversion(benchmark::State& state) {
  const vec3 xyz = some_colour();
  for (auto _ : state) benchmark::DoNotOptimize(out2inp(display(), xyz));
}
BENCHMARK(one_inversion)->Unit(benchmark::kMicrosecond);

void ramp_top_of_6500K(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(ramptop_temp(display(), 6500));
}
BENCHMARK(ramp_top_of_6500K)->Unit(benchmark::kMicrosecond);

void swath_of_6500K(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(bcgtw(display(), 6500, 0.005));
}
BENCHMARK(swath_of_6500K)->Unit(benchmark::kMillisecond);

// Argument: rows of the table.
void gray_table(benchmark::State& state) {
  matrix table(static_cast<std::size_t>(state.range(0)), 3);
  const lut curve = make_gamma_table(2.2, static_cast<int>(state.range(0)));
  for (auto _ : state) {
    colortemp_lut(table, display(), 6500, curve, 0.5, 0);
    benchmark::DoNotOptimize(table);
  }
}
BENCHMARK(gray_table)->Arg(256)->Arg(4096)->Unit(benchmark::kMillisecond);

// A table of 256 points, evaluated at 1000 places: prepared or not, on an even grid and on another.
template <class Ask>
void look_up(benchmark::State& state, const lut& t, Ask ask) {
  const std::vector<double> places = linspace(0, 1, 1000);
  for (auto _ : state) {
    for (const double x : places) benchmark::DoNotOptimize(ask(t, x));
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(places.size()));
}

void interp_even(benchmark::State& state) { look_up(state, make_gamma_table(2.2, 256), interp); }
BENCHMARK(interp_even);

void interpolator_on(benchmark::State& state, const lut& t) {
  const interpolator ready(t);
  look_up(state, t, [&](const lut&, double x) { return ready(x); });
}
void interpolator_even(benchmark::State& state) { interpolator_on(state, make_gamma_table(2.2, 256)); }
BENCHMARK(interpolator_even);
void interpolator_uneven(benchmark::State& state) { interpolator_on(state, invlut(make_gamma_table(2.2, 256))); }
BENCHMARK(interpolator_uneven);

// Parses and fits a measurement file. Argument: levels in a ramp.
void load(benchmark::State& state) {
  const std::string path = measurement_path(static_cast<int>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(loadmonitor(path, 5));
}
BENCHMARK(load)->Arg(17)->Arg(64)->Arg(256)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace corvantile::bench
