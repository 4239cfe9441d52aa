// The reader of measurement files.

#include <cstddef>
#include <cstdint>

#include "corvantile/monitor/monitor.hpp"
#include "fuzz/expect.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace corvantile;
  using namespace corvantile::fuzz;

  measurements samples;
  if (const auto stop = stop_of([&] { samples = parse_measurements("display.txt", as_text(data, size)); })) {
    expect(stop->kind == fault::content || stop->kind == fault::version, "a file without a result is refused");
    return 0;
  }
  expect(samples.version == 1 || samples.version == 2, "the version is 1 or 2");
  const std::size_t ramps = samples.version == 1 ? 7 : 4;
  expect(samples.nramp >= 2, "a ramp has two levels");
  expect(samples.data.rows() >= ramps * static_cast<std::size_t>(samples.nramp), "all ramps are there");
  expect(samples.data.cols() == 6, "a sample has six numbers");
  return 0;
}
