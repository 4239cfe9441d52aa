// The reader of gamma-curve files and the smoothing of what it read.
// The first byte is the number of pieces, as a digit; the rest is the file.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "driver/gamma_file.hpp"
#include "fuzz/expect.hpp"
#include "fuzz/number_mutator.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace corvantile;
  using namespace corvantile::fuzz;

  if (size == 0) return 0;
  const int numsegs = data[0] >= '3' && data[0] <= '9' ? data[0] - '0' : -1;  // below 0: the default of the fit
  const gamma_file file{"gamma.txt", std::string(as_text(data + 1, size - 1))};
  gamma_curve curve;
  lut table;
  const auto stop = stop_of([&] {
    curve = read_gamma_curve(file);
    expect(curve.p.size() >= 2 && curve.p.size() == curve.L.size(), "a curve has two points");
    expect(curve.p.front() == 0 && curve.p.back() == 1, "drive values run from 0 to 1");
    expect(curve.L.front() == 0 && curve.L.back() == 1, "luminances run from 0 to 1");
    expect(std::ranges::is_sorted(curve.p), "drive values rise");
    table = smooth_gamma_curve(file, curve, numsegs);
  });
  if (stop) {
    expect(stop->status == 5, "a file without a curve has status 5");
    return 0;
  }
  expect(isvalid_lut(table), "the tone curve is a table");
  for (int i = 0; i <= 64; ++i) expect(std::isfinite(interp(table, i / 64.0)), "the tone curve is finite");
  return 0;
}
