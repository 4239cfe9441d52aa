// A display learnt from its patches, and cubes of it.

#include <benchmark/benchmark.h>
#include <random>
#include <vector>

#include "bench/subject.hpp"
#include "corvantile/colour/nonpar_monitor.hpp"
#include "corvantile/colour/standards.hpp"
#include "corvantile/residual/cube.hpp"

namespace corvantile::bench {
namespace {

simulated_display mixing_display() {
  simulated_display d = subject(17);
  d.crosstalk = {{0.1, 0.1, 0.1}};
  return d;
}

const monitor& base() {
  static const monitor mon = makemonitor({.name = "subject", .data = sample_rows(mixing_display()), .nramp = 17});
  return mon;
}

// Ramps and mixtures, `n` readings in all.
std::vector<reading> chart(std::int64_t n) {
  const simulated_display d = mixing_display();
  const matrix ramps = sample_rows(d);
  std::vector<reading> all;
  for (std::size_t i = 0; i < ramps.rows(); ++i) {
    all.push_back({row3(ramps, i) / d.drive, {{ramps(i, 3), ramps(i, 4), ramps(i, 5)}}, i + 1});
  }
  std::mt19937 random(1);
  const auto number = [&] { return static_cast<double>(random()) / 4294967296.0; };
  while (all.size() < static_cast<std::size_t>(n)) {
    const vec3 u{{number(), number(), number()}};
    all.push_back({u, (0.998 + 0.004 * number()) * shown(d, u), all.size() + 1});
  }
  return all;
}

const residual_model& learnt() {
  static const residual_model model = learn_residual(base(), chart(243));
  return model;
}

// Argument: readings.
void learn_display(benchmark::State& state) {
  const std::vector<reading> all = chart(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(learn_residual(base(), all));
}
BENCHMARK(learn_display)->Arg(250)->Arg(2000)->Arg(50000)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();

void prepare_display(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(prepared_residual_model(learnt()));
}
BENCHMARK(prepare_display)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();

void value_and_nine_slopes(benchmark::State& state) {
  const prepared_residual_model display(learnt());
  vec3 u;
  for (auto _ : state) {
    for (std::size_t c = 0; c < 3; ++c) {
      const double next = u[c] + 0.1 + 0.11 * static_cast<double>(c);
      u[c] = next < 1 ? next : next - 1;
    }
    benchmark::DoNotOptimize(display.lab(u));
  }
}
BENCHMARK(value_and_nine_slopes);

// Arguments: points a side, and the target: 0 sRGB, 1 Display P3, 2 BT.2020.
void cube(benchmark::State& state) {
  const prepared_residual_model display(learnt());
  const auto& xy = std::array{srgb, display_p3, bt2020}[static_cast<std::size_t>(state.range(1))];
  const double luminance = 0.95 * ramptop_xyz(base(), xy.white).xyz[1];
  const cube_target target = make_cube_target(xy, luminance, make_gamma_table(2.2, 4096), base().darklight);
  const auto as_it_is = [](const vec3& signal) { return signal; };
  const auto size = static_cast<std::size_t>(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(make_cube(display, target, as_it_is, size));
}
BENCHMARK(cube)
    ->ArgNames({"points", "target"})
    ->ArgsProduct({{17, 33, 65}, {0, 1, 2}})
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime();

}  // namespace
}  // namespace corvantile::bench
