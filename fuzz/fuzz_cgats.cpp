// The reader of .ti3 and other CGATS texts, and of the calibrations in them.

#include <cstddef>
#include <cstdint>

#include "corvantile/formats/calibration.hpp"
#include "corvantile/formats/cgats.hpp"
#include "corvantile/formats/writers/cal.hpp"
#include "fuzz/number_mutator.hpp"
#include "fuzz/sound_readings.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace corvantile;
  using namespace corvantile::fuzz;

  const std::string_view text = as_text(data, size);
  expect_read_or_refused([&] { return read_cgats("source", text); }, size);

  calibration_curves curves;
  if (stop_of([&] { curves = read_calibration("source", text); })) return 0;
  const std::string written = calibration_file(curves, {.title = "fuzzed", .comments = {}});
  // Inputs closer than the digits that are written become equal: refused then, but never misread.
  calibration_curves again;
  if (stop_of([&] { again = read_calibration("written", written); })) return 0;
  for (std::size_t c = 0; c < 3; ++c) {
    for (std::size_t i = 0; i < again[c].y.size(); ++i)
      expect(std::abs(again[c].y[i] - curves[c].y[i]) <= 1e-9, "a calibration reads back");
  }
  return 0;
}
