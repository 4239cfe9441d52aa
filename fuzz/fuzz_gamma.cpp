// The reader of gamma-curve files and the smoothing of what it read.
// The first byte is the number of pieces, as a digit; the rest is the file.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "corvantile/documents/point_files.hpp"
#include "fuzz/expect.hpp"
#include "fuzz/number_mutator.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace corvantile;
  using namespace corvantile::fuzz;

  if (size == 0) return 0;
  const int numsegs = data[0] >= '3' && data[0] <= '9' ? data[0] - '0' : -1;  // below 0: the default of the fit
  const std::string_view text = as_text(data + 1, size - 1);
  lut table;
  const auto stop = stop_of([&] { table = tone_curve(parse_tone_samples("gamma.txt", text), numsegs); });
  if (stop) {
    expect(stop->kind == fault::content, "a file without a curve is refused for its content");
    return 0;
  }
  expect(isvalid_lut(table), "the tone curve is a table");
  expect(table.x.front() == 0 && table.x.back() == 1, "drive values run from 0 to 1");
  expect(std::ranges::is_sorted(table.y), "the tone curve never falls");
  for (int i = 0; i <= 64; ++i) expect(std::isfinite(interp(table, i / 64.0)), "the tone curve is finite");
  return 0;
}
