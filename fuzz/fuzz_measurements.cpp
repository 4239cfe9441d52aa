// The reader of measurement files.

#include <cstddef>
#include <cstdint>

#include "corvantile/documents/measurement_file.hpp"
#include "fuzz/expect.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace corvantile;
  using namespace corvantile::fuzz;

  measurement_file file;
  if (const auto stop = stop_of([&] { file = parse_measurement_file("display.txt", as_text(data, size)); })) {
    expect(stop->kind == fault::content || stop->kind == fault::version, "a file without a result is refused");
    return 0;
  }
  const measurements& samples = file.samples;
  expect(parse_measurements("display.txt", as_text(data, size)).data == samples.data, "both readers read the same");
  expect(samples.version == 1 || samples.version == 2, "the version is 1 or 2");
  const std::size_t ramps = samples.version == 1 ? 7 : 4;
  expect(samples.nramp >= 2, "a ramp has two levels");
  expect(samples.data.rows() >= ramps * static_cast<std::size_t>(samples.nramp), "all ramps are there");
  expect(samples.data.cols() == 6, "a sample has six numbers");
  return 0;
}
